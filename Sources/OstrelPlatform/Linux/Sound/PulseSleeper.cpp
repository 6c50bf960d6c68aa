#include "OstrelPlatform/Linux/Sound/PulseSleeper.h"

#include <pulse/mainloop.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace Ostrel {

namespace {

/// A wake too early does no harm.
constexpr std::chrono::microseconds LongestSleep = std::chrono::minutes(10);

/// So many, before the queue's own work gets its turn again.
constexpr int MostLooks = 100;

int microsecondsUntil(QueueSleeper::Clock::time_point deadline) {
    const auto left = std::chrono::ceil<std::chrono::microseconds>(deadline - QueueSleeper::Clock::now());
    return static_cast<int>(std::clamp(left, std::chrono::microseconds::zero(), LongestSleep).count());
}

} // namespace

std::unique_ptr<PulseSleeper> PulseSleeper::create() {
    auto* loop = pa_mainloop_new();
    return loop ? std::unique_ptr<PulseSleeper>(new PulseSleeper(loop)) : nullptr;
}

PulseSleeper::~PulseSleeper() {
    pa_mainloop_free(loop_);
}

void PulseSleeper::sleep(std::optional<Clock::time_point> deadline) {
    const auto nextLook = lastDispatch_ + pace_;
    if (pace_ > Clock::duration::zero() && isWokenBefore(deadline ? std::min(nextLook, *deadline) : nextLook))
        return;
    dispatch(deadline);
}

bool PulseSleeper::isWokenBefore(Clock::time_point time) {
    std::unique_lock lock(mutex_);
    return condition_.wait_until(lock, time, [this] { return std::exchange(isWoken_, false); });
}

void PulseSleeper::dispatch(std::optional<Clock::time_point> deadline) {
    if (pa_mainloop_prepare(loop_, deadline ? microsecondsUntil(*deadline) : -1) < 0)
        return;
    if (pa_mainloop_poll(loop_) >= 0)
        pa_mainloop_dispatch(loop_);
    // One look takes one message, and with a pace several have come.
    for (int looks = 0; looks < MostLooks && pace_ > Clock::duration::zero(); ++looks) {
        if (pa_mainloop_iterate(loop_, 0, nullptr) <= 0)
            break;
    }
    lastDispatch_ = Clock::now();
}

void PulseSleeper::wake() {
    {
        const std::scoped_lock lock(mutex_);
        isWoken_ = true;
    }
    condition_.notify_one();
    pa_mainloop_wakeup(loop_);
}

pa_mainloop_api& PulseSleeper::api() {
    return *pa_mainloop_get_api(loop_);
}

} // namespace Ostrel
