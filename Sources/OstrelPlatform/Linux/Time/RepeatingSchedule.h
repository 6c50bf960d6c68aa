#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace Ostrel {

/// When repeating timers fire. It knows no event loop: it says when it wants to be woken, and is told the time.
///
/// Timers of one period share their beats, and the beats of all periods lie on one grid that begins with the first
/// timer, so that a skin of 500 ms and one of 1,000 ms wake the process twice a second and not three times:
///
///     500 ms   |   .   .   .   .
///     1,000 ms |       .       .
///
/// A timer therefore first fires at the beat nearest to one period from its start. Times are nanoseconds of any
/// monotonic clock.
class RepeatingSchedule {
public:
    using Nanoseconds = std::int64_t;

    /// A timer; it ends when the handle's last copy goes, also from within its own body.
    using Handle = std::shared_ptr<void>;
    [[nodiscard]] Handle add(Nanoseconds period, Nanoseconds now, std::function<void()> body);

    /// Absent when no timer is left.
    std::optional<Nanoseconds> nextBeat() const;
    /// Fires what is due, each timer at most once, in the order they were made. False when nothing was.
    bool fire(Nanoseconds now, const std::function<void()>& beforeFirst);

private:
    struct Timer {
        std::uint64_t number = 0;
        Nanoseconds notBefore = 0;
        std::function<void()> body;
    };
    struct Beat {
        Nanoseconds next = 0;
        std::vector<std::weak_ptr<Timer>> timers;
    };

    using Timers = std::vector<std::shared_ptr<Timer>>;
    void collectDue(Nanoseconds now, Timers& due);

    std::map<Nanoseconds, Beat> beats_;
    /// Kept between beats for its capacity.
    Timers due_;
    Nanoseconds gridStart_ = 0;
    std::uint64_t timersMade_ = 0;
};

} // namespace Ostrel
