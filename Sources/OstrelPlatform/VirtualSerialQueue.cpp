#include "OstrelPlatform/VirtualSerialQueue.h"

#include "OstrelPlatform/Clock.h"

#include <algorithm>

namespace Ostrel {

void VirtualSerialQueue::post(Work work) {
    postAfter(0, std::move(work));
}

void VirtualSerialQueue::postAfter(double seconds, Work work) {
    const double time = clock_.uptimeSeconds() + seconds;
    const auto at = std::upper_bound(
        pending_.begin(), pending_.end(), time, [](double t, const Entry& entry) { return t < entry.time; });
    pending_.insert(at, {time, std::move(work)});
}

void VirtualSerialQueue::sync(const Work& work) {
    ++depth_;
    work();
    --depth_;
}

void VirtualSerialQueue::runDue() {
    while (!pending_.empty() && pending_.front().time <= clock_.uptimeSeconds()) {
        const Work work = std::move(pending_.front().work);
        pending_.pop_front();
        sync(work);
    }
}

} // namespace Ostrel
