#pragma once

#include "OstrelPlatform/SerialQueue.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace Ostrel {

/// How the thread of a queue waits for work. A queue whose pieces wait for the outside brings its own.
class QueueSleeper {
public:
    using Clock = std::chrono::steady_clock;

    virtual ~QueueSleeper() = default;
    /// Returns when woken, at the deadline, or earlier. The queue's thread.
    virtual void sleep(std::optional<Clock::time_point> deadline) = 0;
    /// Ends the running `sleep`, or else the next one. Any thread.
    virtual void wake() = 0;
};

/// A lock that goes to those who wait in the order they came, so that a busy queue cannot keep the main thread out.
class FairLock {
public:
    void lock();
    void unlock();

private:
    std::mutex mutex_;
    std::condition_variable condition_;
    /// Guarded by `mutex_`: the number of the next to come, and of the one whose turn it is.
    std::uint64_t nextNumber_ = 0;
    std::uint64_t turn_ = 0;
};

/// A queue with a thread of its own, which exists from the first post on.
class ThreadSerialQueue final : public SerialQueue {
public:
    ThreadSerialQueue();
    /// `sleeper` outlives the queue.
    explicit ThreadSerialQueue(QueueSleeper& sleeper);
    /// Waits for the piece that is running. Not from the queue itself.
    ~ThreadSerialQueue() override;

    void post(Work work) override;
    void postAfter(double seconds, Work work) override;
    void sync(const Work& work) override;
    bool isCurrent() const override;

    /// For a piece that waits for the outside: others may `sync` while `wait` runs. Only on the queue.
    void whileReleased(const Work& wait);

private:
    void startLocked();
    void run();
    Work takeDueLocked();
    std::optional<QueueSleeper::Clock::time_point> nextDeadlineLocked() const;

    std::unique_ptr<QueueSleeper> ownSleeper_;
    QueueSleeper& sleeper_;
    /// Held while a piece runs.
    FairLock exclusion_;
    /// The thread that holds `exclusion_`; nobody's id else.
    std::atomic<std::thread::id> holder_;
    /// Guards the members below.
    std::mutex mutex_;
    std::deque<Work> ready_;
    std::multimap<QueueSleeper::Clock::time_point, Work> delayed_;
    bool isStopping_ = false;
    std::thread thread_;
};

} // namespace Ostrel
