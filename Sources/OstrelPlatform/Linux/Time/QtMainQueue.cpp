#include "OstrelPlatform/Linux/Time/QtMainQueue.h"

#include "OstrelPlatform/HostStatistics.h"

#include <QObject>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>

namespace Ostrel {

namespace {

using Nanoseconds = RepeatingSchedule::Nanoseconds;

constexpr Nanoseconds Millisecond = 1'000'000;
// What the loop's timer takes at a time; a longer wait is taken in several.
constexpr Nanoseconds LongestWait = 24 * 3600 * 1000 * Millisecond;
constexpr double ShortestPeriodSeconds = 0.001;
constexpr double LongestPeriodSeconds = 1e9;

Nanoseconds now() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

Nanoseconds nanosecondsOf(double seconds) {
    return std::llround(std::min(seconds, LongestPeriodSeconds) * 1e9);
}

/// Rounded up, for a timer that is early by a fraction would find nothing due.
std::chrono::milliseconds waitUntil(Nanoseconds time) {
    const Nanoseconds wait = std::clamp<Nanoseconds>(time - now(), 0, LongestWait);
    return std::chrono::milliseconds((wait + Millisecond - 1) / Millisecond);
}

class ScheduledTimer final : public RepeatingTimer {
public:
    explicit ScheduledTimer(RepeatingSchedule::Handle handle)
        : handle_(std::move(handle)) { }

private:
    RepeatingSchedule::Handle handle_;
};

void runAfter(QObject* receiver, Nanoseconds due, std::function<void()> work) {
    const auto step = [receiver, due, work = std::move(work)]() mutable {
        if (now() >= due)
            return work();
        runAfter(receiver, due, std::move(work));
    };
    QTimer::singleShot(waitUntil(due), Qt::PreciseTimer, receiver, step);
}

} // namespace

QtMainQueue::QtMainQueue(HostStatistics& statistics)
    : statistics_(statistics)
    , schedule_(std::make_shared<RepeatingSchedule>())
    , receiver_(std::make_unique<QObject>())
    , timer_([this] { fire(); }) { }

QtMainQueue::~QtMainQueue() = default;

void QtMainQueue::post(std::function<void()> work) {
    QMetaObject::invokeMethod(receiver_.get(), std::move(work), Qt::QueuedConnection);
}

void QtMainQueue::postAfter(double seconds, std::function<void()> work) {
    const Nanoseconds due = now() + (seconds > 0 ? nanosecondsOf(seconds) : 0);
    // The loop's timers belong to its thread.
    post([receiver = receiver_.get(), due, work = std::move(work)]() mutable {
        runAfter(receiver, due, std::move(work));
    });
}

bool QtMainQueue::isMainThread() const {
    return QThread::currentThread() == receiver_->thread();
}

std::unique_ptr<RepeatingTimer> QtMainQueue::startRepeating(double periodSeconds, std::function<void()> body) {
    const double period = periodSeconds >= ShortestPeriodSeconds ? periodSeconds : ShortestPeriodSeconds;
    auto handle = schedule_->add(nanosecondsOf(period), now(), std::move(body));
    rearm();
    return std::make_unique<ScheduledTimer>(std::move(handle));
}

void QtMainQueue::fire() {
    const bool fired = schedule_->fire(now(), [this] {
        statistics_.beginWake();
        // Before the bodies, for one of them may run a loop of its own in which the other timers go on.
        rearm();
    });
    if (!fired)
        rearm();
}

void QtMainQueue::rearm() {
    if (const auto next = schedule_->nextBeat())
        timer_.wakeAt(*next);
    else
        timer_.stop();
}

} // namespace Ostrel
