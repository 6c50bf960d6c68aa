#pragma once

#include "OstrelPlatform/Linux/Sound/PulseSleeper.h"
#include "OstrelPlatform/Linux/Sound/PulseTap.h"
#include "OstrelPlatform/ThreadSerialQueue.h"

#include <memory>
#include <utility>

namespace Ostrel {

/// The client of a sound server that speaks PulseAudio's protocol, on one thread.
class PulseSystem final : public AudioSystem {
public:
    /// Null when the machine lacks what it needs. Whether a server runs is asked later.
    static std::unique_ptr<PulseSystem> create() {
        auto sleeper = PulseSleeper::create();
        return sleeper ? std::unique_ptr<PulseSystem>(new PulseSystem(std::move(sleeper))) : nullptr;
    }

    SerialQueue& queue() override { return queue_; }
    AudioTap& tap() override { return tap_; }

private:
    explicit PulseSystem(std::unique_ptr<PulseSleeper> sleeper)
        : sleeper_(std::move(sleeper))
        , tap_(*sleeper_, queue_)
        , queue_(*sleeper_) { }

    // Members are destroyed in reverse order: once the queue's thread has ended, the others may be destroyed on any
    // thread.
    std::unique_ptr<PulseSleeper> sleeper_;
    PulseTap tap_;
    ThreadSerialQueue queue_;
};

} // namespace Ostrel
