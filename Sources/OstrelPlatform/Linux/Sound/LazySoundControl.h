#pragma once

#include "OstrelPlatform/SoundControl.h"

#include <memory>
#include <string>
#include <utility>

namespace Ostrel {

class MainQueue;

/// Loads the client of the sound server when a skin first asks. Where there is none, nothing is known.
class LazySoundControl final : public SoundControl {
public:
    /// `moduleFile` is the client's module; empty means the one that was built or installed with this program.
    explicit LazySoundControl(MainQueue& mainQueue, std::string moduleFile = {})
        : mainQueue_(mainQueue)
        , moduleFile_(std::move(moduleFile)) { }

    const State& state() override;
    void setVolume(double volume) override;
    void toggleMute() override;
    void chooseNext(int steps) override;
    void choose(int number) override;

private:
    /// Null without a client.
    SoundControl* loaded();

    MainQueue& mainQueue_;
    std::string moduleFile_;
    std::unique_ptr<SoundControl> control_;
    bool tried_ = false;
};

} // namespace Ostrel
