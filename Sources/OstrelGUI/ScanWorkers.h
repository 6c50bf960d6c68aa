#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace Ostrel {

/// A few threads that share a list of work, which they do in any order of ending. They begin with the first work.
class ScanWorkers {
public:
    using Work = std::function<void()>;

    explicit ScanWorkers(std::size_t threadCount);
    ~ScanWorkers() { stop(); }
    ScanWorkers(const ScanWorkers&) = delete;
    ScanWorkers& operator=(const ScanWorkers&) = delete;

    void post(std::vector<Work> work);
    void dropWaiting();
    /// Drops what waits and waits for what runs; for good.
    void stop();

private:
    void run();

    std::size_t threadCount_;
    std::vector<std::thread> threads_;
    /// Guards the members below.
    std::mutex mutex_;
    std::condition_variable condition_;
    std::deque<Work> waiting_;
    bool isStopping_ = false;
};

} // namespace Ostrel
