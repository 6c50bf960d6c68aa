#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>

namespace Ostrel {

struct Platform;

/// When the pictures of widgets are taken: a while after each change, when the skin has drawn what it brought. A
/// picture costs milliseconds, and a skin may change at every tick without end: changes that come while a picture is
/// due share the one after it, a widget that never rests is taken less and less often, and of many that are due at
/// once, as after a start, one is taken at a time with the main loop in between. Main thread.
class PreviewSchedule {
public:
    /// Seconds from a change to its picture.
    static constexpr double Delay = 0.45;

    /// The platform outlives the schedule.
    explicit PreviewSchedule(const Platform& platform)
        : platform_(platform) { }

    /// Has `take` run for the widget's change; never after the schedule's end.
    void request(const std::string& path, std::function<void()> take);

private:
    struct Pending {
        /// The newest change since the picture that is due was asked for; empty without one.
        std::function<void()> next;
        double nextDue = 0;
        /// Pictures in a row during whose wait the widget has changed again.
        int streak = 0;
    };

    void post(const std::string& path, double seconds, std::function<void()> take);
    void finish(const std::string& path);
    void takeNext();

    const Platform& platform_;
    std::unordered_map<std::string, Pending> pending_;
    /// Those whose time has come; the first is being taken, or is waited for.
    std::deque<std::function<void()>> due_;
    bool isTaking_ = false;
    /// Expires with the schedule.
    std::shared_ptr<void> life_ = std::make_shared<int>();
};

} // namespace Ostrel
