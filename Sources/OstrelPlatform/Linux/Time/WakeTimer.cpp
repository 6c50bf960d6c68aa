#include "OstrelPlatform/Linux/Time/WakeTimer.h"

#include <QSocketNotifier>

#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>

namespace Ostrel {

namespace {

constexpr std::int64_t Second = 1'000'000'000;

} // namespace

WakeTimer::WakeTimer(std::function<void()> onWake)
    : onWake_(std::move(onWake))
    , descriptor_(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK))
    , notifier_(std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read)) {
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
        std::uint64_t expirations = 0;
        if (read(descriptor_, &expirations, sizeof expirations) == sizeof expirations)
            onWake_();
    });
}

WakeTimer::~WakeTimer() {
    notifier_.reset();
    close(descriptor_);
}

void WakeTimer::wakeAt(std::int64_t time) {
    // All zero would stop the timer.
    const std::int64_t when = std::max<std::int64_t>(time, 1);
    const itimerspec setting{{}, {static_cast<time_t>(when / Second), static_cast<long>(when % Second)}};
    timerfd_settime(descriptor_, TFD_TIMER_ABSTIME, &setting, nullptr);
}

void WakeTimer::stop() {
    const itimerspec setting{};
    timerfd_settime(descriptor_, 0, &setting, nullptr);
}

} // namespace Ostrel
