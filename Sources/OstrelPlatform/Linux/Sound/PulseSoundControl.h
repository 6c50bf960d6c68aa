#pragma once

#include "OstrelPlatform/SoundControl.h"

#include <memory>

namespace Ostrel {

class MainQueue;

/// The default output of a sound server that speaks PulseAudio's protocol. The server's events come on the client
/// library's own thread and are taken over on the main one. A server that went away is looked for again after some
/// seconds, when it is asked for.
class PulseSoundControl final : public SoundControl {
public:
    explicit PulseSoundControl(MainQueue& mainQueue);
    ~PulseSoundControl() override;

    const State& state() override;
    void setVolume(double volume) override;
    void toggleMute() override;
    void chooseNext(int steps) override;
    void choose(int number) override;

private:
    class Session;

    void begin();

    MainQueue& mainQueue_;
    std::shared_ptr<Session> session_;
    double retryAt_ = 0;
};

} // namespace Ostrel
