#include "OstrelPlatform/Linux/Sound/LinuxSound.h"

#include "OstrelPlatform/Linux/ModuleLoader.h"
#include "OstrelPlatform/Linux/Sound/SoundModule.h"
#include "OstrelPlatform/SilentAudioSystem.h"
#include "OstrelPlatform/ThreadSerialQueue.h"

namespace Ostrel::LinuxSound {

std::unique_ptr<AudioSystem> open(const std::string& moduleFile) {
    const auto file = moduleFile.empty() ? ModuleLoader::installedFile(OSTREL_SOUND_MODULE) : moduleFile;
    const auto make = ModuleLoader::function<MakeAudioSystem>(file, MakeAudioSystemName);
    if (std::unique_ptr<AudioSystem> system{make ? make() : nullptr})
        return system;
    return std::make_unique<SilentAudioSystem>(std::make_unique<ThreadSerialQueue>());
}

} // namespace Ostrel::LinuxSound
