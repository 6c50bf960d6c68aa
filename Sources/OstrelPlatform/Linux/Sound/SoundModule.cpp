#include "OstrelPlatform/Linux/Sound/SoundModule.h"

#include "OstrelPlatform/Linux/Sound/PulseSoundControl.h"
#include "OstrelPlatform/Linux/Sound/PulseSystem.h"

#include <memory>

extern "C" __attribute__((visibility("default"))) Ostrel::AudioSystem* ostrelMakeAudioSystem() {
    return Ostrel::PulseSystem::create().release();
}

extern "C" __attribute__((visibility("default"))) Ostrel::SoundControl* ostrelMakeSoundControl(
    Ostrel::MainQueue& queue) {
    return std::make_unique<Ostrel::PulseSoundControl>(queue).release();
}
