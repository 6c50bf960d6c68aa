#pragma once

#include "OstrelPlatform/SerialQueue.h"

#include <cstddef>
#include <deque>

namespace Ostrel {

class Clock;

/// A queue without a thread, on a clock that the owner moves: posted work waits until the owner runs it.
class VirtualSerialQueue final : public SerialQueue {
public:
    explicit VirtualSerialQueue(const Clock& clock)
        : clock_(clock) { }

    void post(Work work) override;
    void postAfter(double seconds, Work work) override;
    void sync(const Work& work) override;
    bool isCurrent() const override { return depth_ > 0; }

    /// Runs what is posted and due now, in order, and what that posts in turn.
    void runDue();
    std::size_t pendingCount() const { return pending_.size(); }

private:
    struct Entry {
        double time = 0;
        Work work;
    };

    const Clock& clock_;
    /// By time, equal times in the order they were posted.
    std::deque<Entry> pending_;
    int depth_ = 0;
};

} // namespace Ostrel
