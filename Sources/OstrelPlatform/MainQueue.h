#pragma once

#include <functional>
#include <memory>

namespace Ostrel {

/// Fires until it is destroyed. Its owner may destroy it from within its own body.
class RepeatingTimer {
public:
    virtual ~RepeatingTimer() = default;
};

/// The main thread's event loop. Work that is still queued when the queue ends is dropped, not run.
class MainQueue {
public:
    virtual ~MainQueue() = default;
    /// Runs `work` on the main thread after what is queued already; never at once. Any thread.
    virtual void post(std::function<void()> work) = 0;
    /// The same, `seconds` from now at the earliest. Any thread.
    virtual void postAfter(double seconds, std::function<void()> work) = 0;
    virtual bool isMainThread() const = 0;
    /// First fires one period from now. Timers of equal period fire in one wake, in the order they were made; a wake
    /// that comes late fires once, not once for each period missed. Main thread.
    [[nodiscard]] virtual std::unique_ptr<RepeatingTimer> startRepeating(
        double periodSeconds, std::function<void()> body)
        = 0;
};

} // namespace Ostrel
