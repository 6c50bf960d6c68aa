#include "OstrelEngine/Measures/Full/FullSoundMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelEngine/Players/MacOSPlayer.h"
#include "OstrelEngine/Players/MediaPlayerBridge.h"
#include "OstrelEngine/Players/MediaPlayerBridges.h"
#include "OstrelPlatform/Platform.h"
#include "OstrelPlatform/SoundControl.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace Ostrel {

namespace {

struct Command {
    /// In upper case.
    std::string verb;
    double number = 0;
};

Command parseCommand(std::string_view text) {
    text = trimmed(text);
    const auto verb = text.substr(0, text.find_first_of(" \t"));
    return {upperCased(verb), OptionValues::number(trimmed(text.substr(verb.size()))).value_or(0)};
}

void changeVolume(SoundControl& sound, double change) {
    sound.setVolume(std::clamp(sound.state().volume + change, 0.0, 100.0));
}

} // namespace

void FullWin7AudioMeasure::update() {
    auto* sound = host().platform().soundControl;
    if (!sound || !sound->state().isKnown)
        return publishText("ERROR - Getting Default Device", 0, 0, 100);
    const auto& state = sound->state();
    publishText(state.description, state.isMuted ? -1 : state.volume, 0, 100);
}

bool FullWin7AudioMeasure::executeCommand(std::string_view text) {
    auto* sound = host().platform().soundControl;
    if (!sound)
        return true;
    const auto command = parseCommand(text);
    if (command.verb == "SETVOLUME")
        sound->setVolume(std::clamp(command.number, 0.0, 100.0));
    else if (command.verb == "CHANGEVOLUME")
        changeVolume(*sound, command.number);
    else if (command.verb == "TOGGLEMUTE")
        sound->toggleMute();
    else if (command.verb == "TOGGLENEXT" || command.verb == "TOGGLEPREVIOUS")
        sound->chooseNext(command.verb == "TOGGLENEXT" ? 1 : -1);
    else if (command.verb == "SETOUTPUTINDEX")
        sound->choose(static_cast<int>(std::clamp(command.number, 0.0, 1e6)));
    else
        host().log(LogLevel::Notice, name(), "Unknown command: " + std::string(text));
    return true;
}

bool FullMediaKeyMeasure::executeCommand(std::string_view text) {
    constexpr double Step = 2;
    auto* sound = host().platform().soundControl;
    auto* players = host().platform().mediaPlayers;
    const auto verb = parseCommand(text).verb;
    if (verb.starts_with("VOLUME")) {
        if (sound && verb == "VOLUMEMUTE")
            sound->toggleMute();
        else if (sound && (verb == "VOLUMEUP" || verb == "VOLUMEDOWN"))
            changeVolume(*sound, verb == "VOLUMEUP" ? Step : -Step);
        return true;
    }
    const std::string_view action = verb == "NEXTTRACK" ? "Next"
        : verb == "PREVTRACK"                           ? "Previous"
        : verb == "STOP"                                ? "Stop"
        : verb == "PLAYPAUSE"                           ? "PlayPause"
                                                        : "";
    // The player that the user chose answers for every name.
    if (players && !action.empty())
        players->shared(MacOSPlayer::spotify)->executeCommand(action, "");
    return true;
}

} // namespace Ostrel
