#pragma once

#include <functional>

namespace Ostrel {

/// Runs work one piece at a time, on whatever thread, so that what it guards needs no lock. Work that is still queued
/// when the queue ends is dropped.
class SerialQueue {
public:
    using Work = std::function<void()>;

    virtual ~SerialQueue() = default;
    /// Runs `work` after what was posted before; never at once. Any thread.
    virtual void post(Work work) = 0;
    /// The same, `seconds` from now at the earliest. Any thread.
    virtual void postAfter(double seconds, Work work) = 0;
    /// Runs `work` with the queue to itself before it returns, on the calling thread. It waits for the piece that is
    /// running and may overtake those that are posted. At once when the caller is on the queue already. Any thread.
    virtual void sync(const Work& work) = 0;
    /// Whether the caller runs on the queue, `sync` included. Any thread.
    virtual bool isCurrent() const = 0;
};

} // namespace Ostrel
