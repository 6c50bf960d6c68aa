#include "OstrelPlatform/VirtualTime.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <limits>
#include <memory>

namespace Ostrel {

namespace {

/// Far above what a skin's start or tick posts; a piece of work that posts itself would never let time move.
constexpr int MaxQueuedRuns = 100000;

} // namespace

struct VirtualTime::TimerState {
    double period = 0;
    double due = 0;
    std::function<void()> body;
    bool isRunning = true;
};

class VirtualTime::Timer final : public RepeatingTimer {
public:
    explicit Timer(std::shared_ptr<TimerState> state)
        : state_(std::move(state)) { }
    ~Timer() override { state_->isRunning = false; }
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

private:
    std::shared_ptr<TimerState> state_;
};

VirtualTime::VirtualTime(std::optional<double> fixedWallSeconds)
    : fixedWallSeconds_(fixedWallSeconds) { }

VirtualTime::~VirtualTime() = default;

double VirtualTime::wallSeconds() const {
    if (fixedWallSeconds_)
        return *fixedWallSeconds_;
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

void VirtualTime::post(std::function<void()> work) {
    const std::lock_guard lock(mutex_);
    posted_.push_back(std::move(work));
}

void VirtualTime::postAfter(double seconds, std::function<void()> work) {
    const std::lock_guard lock(mutex_);
    delayed_.push_back({elapsed_ + seconds, std::move(work)});
}

bool VirtualTime::isMainThread() const {
    return std::this_thread::get_id() == mainThread_;
}

std::unique_ptr<RepeatingTimer> VirtualTime::startRepeating(double periodSeconds, std::function<void()> body) {
    auto state = std::make_shared<TimerState>(
        TimerState{.period = periodSeconds, .due = elapsed_ + periodSeconds, .body = std::move(body)});
    timers_.push_back(state);
    return std::make_unique<Timer>(std::move(state));
}

std::vector<std::shared_ptr<VirtualTime::TimerState>> VirtualTime::runningTimers() {
    std::erase_if(timers_, [](const auto& timer) { return timer.expired(); });
    std::vector<std::shared_ptr<TimerState>> running;
    for (const auto& timer : timers_)
        running.push_back(timer.lock());
    return running;
}

void VirtualTime::fireTimers() {
    fire(runningTimers());
}

void VirtualTime::fire(const std::vector<std::shared_ptr<TimerState>>& timers) {
    if (timers.empty())
        return;
    if (onWake)
        onWake();
    for (const auto& timer : timers) {
        // An earlier one may have ended it.
        if (!timer->isRunning)
            continue;
        timer->due = elapsed_ + timer->period;
        timer->body();
    }
}

void VirtualTime::runQueued() {
    for (int i = 0; i < MaxQueuedRuns; ++i) {
        const auto work = takeNext();
        if (!work)
            return;
        work();
    }
}

std::function<void()> VirtualTime::takeNext() {
    const std::lock_guard lock(mutex_);
    std::function<void()> work;
    if (!posted_.empty()) {
        work = std::move(posted_.front());
        posted_.pop_front();
        return work;
    }
    const auto next = std::ranges::min_element(delayed_, {}, &Delayed::due);
    if (next != delayed_.end() && next->due <= elapsed_) {
        work = std::move(next->work);
        delayed_.erase(next);
    }
    return work;
}

std::optional<double> VirtualTime::nextDue() {
    auto due = std::numeric_limits<double>::infinity();
    for (const auto& timer : runningTimers())
        due = std::min(due, timer->due);
    const std::lock_guard lock(mutex_);
    for (const auto& delayed : delayed_)
        due = std::min(due, delayed.due);
    return due < std::numeric_limits<double>::infinity() ? std::optional(due) : std::nullopt;
}

void VirtualTime::runFor(double seconds) {
    const double end = elapsed_ + seconds;
    runQueued();
    for (auto due = nextDue(); due && *due <= end; due = nextDue()) {
        elapsed_ = std::max(elapsed_, *due);
        auto timers = runningTimers();
        std::erase_if(timers, [this](const auto& timer) { return timer->due > elapsed_; });
        fire(timers);
        runQueued();
    }
    elapsed_ = end;
}

} // namespace Ostrel
