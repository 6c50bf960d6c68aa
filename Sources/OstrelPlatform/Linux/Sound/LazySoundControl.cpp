#include "OstrelPlatform/Linux/Sound/LazySoundControl.h"

#include "OstrelPlatform/Linux/ModuleLoader.h"
#include "OstrelPlatform/Linux/Sound/SoundModule.h"

#include <utility>

namespace Ostrel {

SoundControl* LazySoundControl::loaded() {
    if (!std::exchange(tried_, true)) {
        const auto make = ModuleLoader::function<MakeSoundControl>(
            moduleFile_.empty() ? ModuleLoader::installedFile(OSTREL_SOUND_MODULE) : moduleFile_, MakeSoundControlName);
        control_.reset(make ? make(mainQueue_) : nullptr);
    }
    return control_.get();
}

const SoundControl::State& LazySoundControl::state() {
    static const State unknown;
    auto* control = loaded();
    return control ? control->state() : unknown;
}

void LazySoundControl::setVolume(double volume) {
    if (auto* control = loaded())
        control->setVolume(volume);
}

void LazySoundControl::toggleMute() {
    if (auto* control = loaded())
        control->toggleMute();
}

void LazySoundControl::chooseNext(int steps) {
    if (auto* control = loaded())
        control->chooseNext(steps);
}

void LazySoundControl::choose(int number) {
    if (auto* control = loaded())
        control->choose(number);
}

} // namespace Ostrel
