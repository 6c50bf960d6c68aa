#pragma once

#include "OstrelPlatform/Linux/Time/RepeatingSchedule.h"
#include "OstrelPlatform/Linux/Time/WakeTimer.h"
#include "OstrelPlatform/MainQueue.h"

#include <functional>
#include <memory>

class QObject;

namespace Ostrel {

class HostStatistics;

/// The main queue on Qt's event loop. All repeating timers hang on one timer, which wakes the loop when the next beat
/// is due: one wake, one sample of the host, however many widgets. Made and destroyed on the main thread, while the
/// application object lives.
class QtMainQueue final : public MainQueue {
public:
    explicit QtMainQueue(HostStatistics& statistics);
    ~QtMainQueue() override;

    void post(std::function<void()> work) override;
    void postAfter(double seconds, std::function<void()> work) override;
    bool isMainThread() const override;
    std::unique_ptr<RepeatingTimer> startRepeating(double periodSeconds, std::function<void()> body) override;

private:
    void fire();
    void rearm();

    HostStatistics& statistics_;
    std::shared_ptr<RepeatingSchedule> schedule_;
    /// Receives what is posted; whatever is still queued goes with it.
    std::unique_ptr<QObject> receiver_;
    WakeTimer timer_;
};

} // namespace Ostrel
