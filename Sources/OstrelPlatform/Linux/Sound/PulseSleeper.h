#pragma once

#include "OstrelPlatform/ThreadSerialQueue.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>

struct pa_mainloop;
struct pa_mainloop_api;

namespace Ostrel {

/// Lets a queue's thread wait for work and for the sound server at once, so that all calls of the server's library come
/// from one thread. A server sends sound in pieces as small as its own cycle; with a pace they are taken together, and
/// the thread wakes that much less often.
class PulseSleeper final : public QueueSleeper {
public:
    /// Null when the machine has no file descriptors left.
    static std::unique_ptr<PulseSleeper> create();
    ~PulseSleeper() override;

    void sleep(std::optional<Clock::time_point> deadline) override;
    void wake() override;
    /// Sleeps without a pace. The queue's thread.
    void sleepUntilAnswer(Clock::time_point deadline) { dispatch(deadline); }
    /// The shortest time between two looks at what the server sent; zero at first. The queue's thread.
    void setPace(Clock::duration pace) { pace_ = pace; }
    pa_mainloop_api& api();

private:
    explicit PulseSleeper(pa_mainloop* loop)
        : loop_(loop) { }
    bool isWokenBefore(Clock::time_point time);
    void dispatch(std::optional<Clock::time_point> deadline);

    pa_mainloop* loop_;
    Clock::duration pace_{};
    Clock::time_point lastDispatch_;
    std::mutex mutex_;
    std::condition_variable condition_;
    /// Guarded by `mutex_`.
    bool isWoken_ = false;
};

} // namespace Ostrel
