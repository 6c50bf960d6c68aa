#include "OstrelPlatform/Linux/Sound/SoundModule.h"

#include "OstrelPlatform/Linux/Sound/PulseSystem.h"

extern "C" __attribute__((visibility("default"))) Ostrel::AudioSystem* ostrelMakeAudioSystem() {
    return Ostrel::PulseSystem::create().release();
}
