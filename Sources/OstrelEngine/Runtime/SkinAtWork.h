#pragma once

namespace Ostrel {

/// Notes which skin the main thread is working for, while an object of this lives: at a load, a tick, a paint or a
/// click. A plain store, so that it may surround a tick; it may be read in the middle of a crash. Main thread.
class SkinAtWork {
public:
    /// The path outlives the object. Null: the one that is noted stays.
    explicit SkinAtWork(const char* path)
        : before_(current_) {
        if (path)
            current_ = path;
    }
    ~SkinAtWork() { current_ = before_; }
    SkinAtWork(const SkinAtWork&) = delete;
    SkinAtWork& operator=(const SkinAtWork&) = delete;

    /// The path of its file; null between the work of skins.
    static const char* current() { return current_; }

private:
    // Read by a signal handler of the same thread, which sees every store that was made.
    static inline const char* volatile current_ = nullptr;

    const char* const before_;
};

} // namespace Ostrel
