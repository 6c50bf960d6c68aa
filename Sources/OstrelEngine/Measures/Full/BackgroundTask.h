#pragma once

#include "OstrelPlatform/MainQueue.h"
#include "OstrelPlatform/Platform.h"
#include "OstrelPlatform/SerialQueue.h"

#include <functional>
#include <memory>
#include <utility>

namespace Ostrel {

/// Work off the main thread whose result comes back on it, unless the task has ended by then. One piece at a time. A
/// member of the measure that wants the result. Main thread.
template <typename Result> class BackgroundTask {
public:
    bool isRunning() const { return *isRunning_; }

    /// `work` owns all that it uses; `deliver` may use the measure. Where there is no worker, the main queue does it.
    void start(const Platform& platform, std::function<Result()> work, std::function<void(Result)> deliver) {
        if (std::exchange(*isRunning_, true))
            return;
        auto run = [&queue = platform.mainQueue, weak = std::weak_ptr(isRunning_), work = std::move(work),
                       deliver = std::move(deliver)] {
            auto result = std::make_shared<Result>(work());
            queue.post([weak, deliver, result] {
                const auto isRunning = weak.lock();
                if (!isRunning)
                    return;
                *isRunning = false;
                deliver(std::move(*result));
            });
        };
        if (platform.worker)
            platform.worker->post(std::move(run));
        else
            platform.mainQueue.post(std::move(run));
    }

private:
    std::shared_ptr<bool> isRunning_ = std::make_shared<bool>(false);
};

} // namespace Ostrel
