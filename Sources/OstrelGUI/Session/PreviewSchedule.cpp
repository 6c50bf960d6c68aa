#include "OstrelGUI/Session/PreviewSchedule.h"

#include "OstrelPlatform/Clock.h"
#include "OstrelPlatform/MainQueue.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <utility>

namespace Ostrel {

namespace {

/// Pictures in a row that are on time; each further one waits twice as long as the one before it.
constexpr int StreakOnTime = 4;
constexpr int MaxDoublings = 5;
/// Between two pictures, for the widgets to draw.
constexpr double Gap = 0.02;

double longerWait(int streak) {
    return PreviewSchedule::Delay * (1 << std::clamp(streak - StreakOnTime, 0, MaxDoublings));
}

} // namespace

void PreviewSchedule::request(const std::string& path, std::function<void()> take) {
    const auto [found, isFirst] = pending_.try_emplace(path);
    if (isFirst)
        return post(path, Delay, std::move(take));
    found->second.next = std::move(take);
    found->second.nextDue = platform_.clock.uptimeSeconds() + Delay;
}

void PreviewSchedule::post(const std::string& path, double seconds, std::function<void()> take) {
    platform_.mainQueue.postAfter(seconds, [this, path, take = std::move(take), life = std::weak_ptr(life_)] {
        if (life.expired())
            return;
        due_.push_back([this, path, take] {
            // First, for the taking may change the widget or end the schedule.
            finish(path);
            take();
        });
        if (!std::exchange(isTaking_, true))
            takeNext();
    });
}

void PreviewSchedule::takeNext() {
    isTaking_ = !due_.empty();
    if (!isTaking_)
        return;
    platform_.mainQueue.postAfter(Gap, [this, life = std::weak_ptr(life_)] {
        if (!life.expired())
            takeNext();
    });
    const auto take = std::move(due_.front());
    due_.pop_front();
    take();
}

void PreviewSchedule::finish(const std::string& path) {
    auto& pending = pending_.find(path)->second;
    const double onTime = pending.nextDue - platform_.clock.uptimeSeconds();
    // What was long enough ago is on the picture that is taken now.
    if (!pending.next || onTime <= 0) {
        pending_.erase(path);
        return;
    }
    const double seconds = ++pending.streak > StreakOnTime ? std::max(onTime, longerWait(pending.streak)) : onTime;
    post(path, seconds, std::exchange(pending.next, nullptr));
}

} // namespace Ostrel
