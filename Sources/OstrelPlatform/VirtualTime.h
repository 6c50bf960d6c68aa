#pragma once

#include "OstrelPlatform/Clock.h"
#include "OstrelPlatform/MainQueue.h"

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace Ostrel {

/// A clock and event loop that move only when told, so that what runs on them is reproducible. Nothing runs by itself:
/// whoever holds it moves the time, fires the timers and runs the queue. The thread that made it is the
/// main one.
class VirtualTime final : public Clock, public MainQueue {
public:
    /// What the uptime is at the beginning. Not 0, so that nothing seems to have happened just now.
    static constexpr double UptimeAtStart = 3600;

    /// Absent: the wall clock is the machine's.
    explicit VirtualTime(std::optional<double> fixedWallSeconds = std::nullopt);
    ~VirtualTime() override;

    double uptimeSeconds() const override { return UptimeAtStart + elapsed_; }
    double wallSeconds() const override;

    void post(std::function<void()> work) override;
    void postAfter(double seconds, std::function<void()> work) override;
    bool isMainThread() const override;
    [[nodiscard]] std::unique_ptr<RepeatingTimer> startRepeating(
        double periodSeconds, std::function<void()> body) override;

    /// Virtual seconds since the beginning.
    double elapsedSeconds() const { return elapsed_; }
    /// Moves the clock and nothing else.
    void advance(double seconds) { elapsed_ += seconds; }
    /// One wake: each running timer fires once, whether its period has passed or not.
    void fireTimers();
    /// Runs what was posted, and what was delayed and is due, until nothing is left. Work that keeps posting is cut
    /// off.
    void runQueued();
    /// Lets `seconds` pass as a real loop would: timers fire and delayed work runs, each at its time.
    void runFor(double seconds);

    /// Runs before the timers of each wake.
    std::function<void()> onWake;

private:
    class Timer;
    struct TimerState;
    struct Delayed {
        double due = 0;
        std::function<void()> work;
    };

    void fire(const std::vector<std::shared_ptr<TimerState>>& timers);
    std::vector<std::shared_ptr<TimerState>> runningTimers();
    std::function<void()> takeNext();
    std::optional<double> nextDue();

    std::thread::id mainThread_ = std::this_thread::get_id();
    std::optional<double> fixedWallSeconds_;
    double elapsed_ = 0;
    std::vector<std::weak_ptr<TimerState>> timers_;
    /// Guards `posted_` and `delayed_`.
    std::mutex mutex_;
    std::deque<std::function<void()>> posted_;
    std::vector<Delayed> delayed_;
};

} // namespace Ostrel
