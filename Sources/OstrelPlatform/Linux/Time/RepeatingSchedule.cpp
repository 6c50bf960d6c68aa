#include "OstrelPlatform/Linux/Time/RepeatingSchedule.h"

#include <algorithm>

namespace Ostrel {

namespace {

using Nanoseconds = RepeatingSchedule::Nanoseconds;

// After a late beat the next one may come early to return to the grid, but never so early that a publication at sixty
// a second would take it for haste and leave it out: at such rates an even pace counts for more than the grid.
constexpr Nanoseconds ShortestReturn = 16'850'000;

Nanoseconds beatNearest(Nanoseconds start, Nanoseconds period, Nanoseconds time) {
    const Nanoseconds beats = (time - start + period / 2) / period;
    return start + std::max<Nanoseconds>(beats, 1) * period;
}

Nanoseconds beatAfter(Nanoseconds start, Nanoseconds period, Nanoseconds firedAt) {
    const Nanoseconds onGrid = start + ((firedAt - start) / period + 1) * period;
    return std::max(onGrid, firedAt + std::min(period, ShortestReturn));
}

bool isOver(const auto& timers) {
    return std::ranges::all_of(timers, [](const auto& timer) { return timer.expired(); });
}

} // namespace

RepeatingSchedule::Handle RepeatingSchedule::add(Nanoseconds period, Nanoseconds now, std::function<void()> body) {
    if (!nextBeat())
        gridStart_ = now;
    auto& beat = beats_[period];
    if (isOver(beat.timers))
        beat.next = beatNearest(gridStart_, period, now + period);
    auto timer = std::make_shared<Timer>(Timer{++timersMade_, now + period / 2, std::move(body)});
    beat.timers.push_back(timer);
    return timer;
}

std::optional<Nanoseconds> RepeatingSchedule::nextBeat() const {
    std::optional<Nanoseconds> next;
    for (const auto& [period, beat] : beats_)
        if ((!next || beat.next < *next) && !isOver(beat.timers))
            next = beat.next;
    return next;
}

bool RepeatingSchedule::fire(Nanoseconds now, const std::function<void()>& beforeFirst) {
    // Taken out of the member, for a body may run an event loop and with it this function.
    Timers due = std::move(due_);
    collectDue(now, due);
    const bool any = !due.empty();
    if (any)
        beforeFirst();
    for (const auto& timer : due)
        // Ours is the last reference to a timer that an earlier body ended.
        if (timer.use_count() > 1)
            timer->body();
    due.clear();
    due_ = std::move(due);
    return any;
}

void RepeatingSchedule::collectDue(Nanoseconds now, Timers& due) {
    for (auto entry = beats_.begin(); entry != beats_.end();) {
        auto& [period, beat] = *entry;
        if (beat.next <= now) {
            std::erase_if(beat.timers, [](const auto& timer) { return timer.expired(); });
            for (const auto& held : beat.timers)
                if (auto timer = held.lock(); timer && timer->notBefore <= beat.next)
                    due.push_back(std::move(timer));
            beat.next = beatAfter(gridStart_, period, now);
        }
        entry = beat.timers.empty() ? beats_.erase(entry) : std::next(entry);
    }
    std::ranges::sort(due, {}, &Timer::number);
}

} // namespace Ostrel
