#include "OstrelGUI/ScanWorkers.h"

#include <algorithm>

namespace Ostrel {

ScanWorkers::ScanWorkers(std::size_t threadCount)
    : threadCount_(std::max<std::size_t>(threadCount, 1)) { }

void ScanWorkers::stop() {
    std::deque<Work> dropped;
    {
        const std::scoped_lock lock(mutex_);
        isStopping_ = true;
        dropped.swap(waiting_);
    }
    condition_.notify_all();
    for (auto& thread : threads_)
        thread.join();
    threads_.clear();
}

void ScanWorkers::post(std::vector<Work> work) {
    while (threads_.size() < std::min(threadCount_, work.size()))
        threads_.emplace_back([this] { run(); });
    {
        const std::scoped_lock lock(mutex_);
        std::ranges::move(work, std::back_inserter(waiting_));
    }
    condition_.notify_all();
}

void ScanWorkers::dropWaiting() {
    std::deque<Work> dropped;
    const std::scoped_lock lock(mutex_);
    dropped.swap(waiting_);
}

void ScanWorkers::run() {
    std::unique_lock lock(mutex_);
    while (true) {
        condition_.wait(lock, [this] { return isStopping_ || !waiting_.empty(); });
        if (isStopping_)
            return;
        Work work = std::move(waiting_.front());
        waiting_.pop_front();
        lock.unlock();
        work();
        work = nullptr; // what it holds may end with it
        lock.lock();
    }
}

} // namespace Ostrel
