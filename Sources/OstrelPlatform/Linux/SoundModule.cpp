#include "OstrelPlatform/Linux/SoundModule.h"

#include "OstrelPlatform/Linux/PulseSystem.h"

extern "C" __attribute__((visibility("default"))) Ostrel::AudioSystem* ostrelMakeAudioSystem() {
    return Ostrel::PulseSystem::create().release();
}
