#include "OstrelPlatform/ThreadSerialQueue.h"

#include <cmath>

namespace Ostrel {

namespace {

using TimePoint = QueueSleeper::Clock::time_point;

/// Longer delays make no difference to anyone and would overflow the clock.
constexpr double LongestDelaySeconds = 1e8;

class ConditionSleeper final : public QueueSleeper {
public:
    void sleep(std::optional<TimePoint> deadline) override {
        std::unique_lock lock(mutex_);
        if (deadline)
            condition_.wait_until(lock, *deadline, [this] { return isWoken_; });
        else
            condition_.wait(lock, [this] { return isWoken_; });
        isWoken_ = false;
    }

    void wake() override {
        {
            const std::scoped_lock lock(mutex_);
            isWoken_ = true;
        }
        condition_.notify_one();
    }

private:
    std::mutex mutex_;
    std::condition_variable condition_;
    bool isWoken_ = false;
};

TimePoint afterSeconds(double seconds) {
    const double bounded = seconds > 0 ? std::fmin(seconds, LongestDelaySeconds) : 0;
    return QueueSleeper::Clock::now()
        + std::chrono::duration_cast<QueueSleeper::Clock::duration>(std::chrono::duration<double>(bounded));
}

} // namespace

void FairLock::lock() {
    std::unique_lock lock(mutex_);
    const auto number = nextNumber_++;
    condition_.wait(lock, [&] { return turn_ == number; });
}

void FairLock::unlock() {
    {
        const std::scoped_lock lock(mutex_);
        if (++turn_ == nextNumber_)
            return;
    }
    condition_.notify_all();
}

ThreadSerialQueue::ThreadSerialQueue()
    : ownSleeper_(std::make_unique<ConditionSleeper>())
    , sleeper_(*ownSleeper_) { }

ThreadSerialQueue::ThreadSerialQueue(QueueSleeper& sleeper)
    : sleeper_(sleeper) { }

ThreadSerialQueue::~ThreadSerialQueue() {
    {
        const std::scoped_lock lock(mutex_);
        isStopping_ = true;
    }
    sleeper_.wake();
    if (thread_.joinable())
        thread_.join();
}

void ThreadSerialQueue::post(Work work) {
    {
        const std::scoped_lock lock(mutex_);
        ready_.push_back(std::move(work));
        startLocked();
    }
    sleeper_.wake();
}

void ThreadSerialQueue::postAfter(double seconds, Work work) {
    {
        const std::scoped_lock lock(mutex_);
        delayed_.emplace(afterSeconds(seconds), std::move(work));
        startLocked();
    }
    sleeper_.wake();
}

void ThreadSerialQueue::sync(const Work& work) {
    if (isCurrent())
        return work();
    const std::scoped_lock lock(exclusion_);
    holder_ = std::this_thread::get_id();
    work();
    holder_ = std::thread::id();
}

bool ThreadSerialQueue::isCurrent() const {
    return holder_ == std::this_thread::get_id();
}

void ThreadSerialQueue::whileReleased(const Work& wait) {
    holder_ = std::thread::id();
    exclusion_.unlock();
    wait();
    exclusion_.lock();
    holder_ = std::this_thread::get_id();
}

void ThreadSerialQueue::startLocked() {
    if (!thread_.joinable())
        thread_ = std::thread([this] { run(); });
}

void ThreadSerialQueue::run() {
    std::unique_lock lock(mutex_);
    while (!isStopping_) {
        if (Work work = takeDueLocked()) {
            lock.unlock();
            sync(work);
            work = nullptr; // what it holds may post on its way out
            lock.lock();
            continue;
        }
        const auto deadline = nextDeadlineLocked();
        lock.unlock();
        sleeper_.sleep(deadline);
        lock.lock();
    }
}

SerialQueue::Work ThreadSerialQueue::takeDueLocked() {
    while (!delayed_.empty() && delayed_.begin()->first <= QueueSleeper::Clock::now()) {
        ready_.push_back(std::move(delayed_.begin()->second));
        delayed_.erase(delayed_.begin());
    }
    if (ready_.empty())
        return {};
    Work work = std::move(ready_.front());
    ready_.pop_front();
    return work;
}

std::optional<TimePoint> ThreadSerialQueue::nextDeadlineLocked() const {
    if (delayed_.empty())
        return std::nullopt;
    return delayed_.begin()->first;
}

} // namespace Ostrel
