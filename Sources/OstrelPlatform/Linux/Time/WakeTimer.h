#pragma once

#include <cstdint>
#include <functional>
#include <memory>

class QSocketNotifier;

namespace Ostrel {

/// A timer of the kernel that wakes the main loop on time, where the loop's own timers may be a millisecond late: too
/// much between two frames at sixty a second.
class WakeTimer {
public:
    explicit WakeTimer(std::function<void()> onWake);
    ~WakeTimer();
    WakeTimer(const WakeTimer&) = delete;
    WakeTimer& operator=(const WakeTimer&) = delete;

    /// Nanoseconds of the monotonic clock; one that has passed wakes at once. Replaces the time set before.
    void wakeAt(std::int64_t time);
    void stop();

private:
    std::function<void()> onWake_;
    int descriptor_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace Ostrel
