#include "OstrelEngine/Players/MediaPlayerPayload.h"
#include "OstrelEngine/Players/PlayerCommandText.h"
#include "OstrelPlatform/Mac/AppleScriptCommands.h"

#include <cmath>
#include <cstdlib>
#include <string_view>

using namespace Ostrel;

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

void checkState(const MediaPlayerState& state) {
    require(state.status == 1);
    require(std::isfinite(state.duration) && std::isfinite(state.position));
    require(state.progress >= 0 && state.progress <= 100);
    require(state.volume >= 0 && state.volume <= 100);
    require(state.rating >= 0 && state.rating <= 5);
}

} // namespace

/// A player's answer, and the same as a skin's command to a player in that state.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    auto state = MediaPlayerPayload::parseJSONState(text);
    if (!state)
        state = MediaPlayerPayload::parseLegacyDelimitedState(text);
    if (state)
        checkState(*state);
    const auto command = PlayerCommandText::resolve(text, text, state.value_or(MediaPlayerState()));
    if (command) {
        require(std::isfinite(command->seconds) && command->seconds >= 0);
        require(command->value >= 0 && command->value <= 100);
        AppleScriptCommands::script(text, *command);
    }
    return 0;
}
