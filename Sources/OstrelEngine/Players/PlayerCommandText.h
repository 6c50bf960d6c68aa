#pragma once

#include "OstrelPlatform/PlayerTransport.h"

#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

struct MediaPlayerState;

/// The command language of skins for players: a verb in any case and an argument, where a sign makes an amount relative
/// and -1 toggles.
namespace PlayerCommandText {

/// What the text asks of a player in that state. Absent when the verb is unknown or its argument makes no sense.
std::optional<PlayerCommand> resolve(
    std::string_view command, std::string_view playerPath, const MediaPlayerState& state);

/// The argument is a percentage of the track, or seconds where its duration is not known.
std::optional<double> resolveSetPositionSeconds(std::string_view argument, double currentPosition, double duration);
std::optional<int> resolveSetVolumePercent(std::string_view argument, double currentVolume);
std::optional<int> resolveSetRating(std::string_view argument);
std::optional<int> resolveToggleState(std::string_view argument, std::int64_t currentState);

/// Without one pair of quotes of either kind around it.
std::string_view stripWrappingQuotes(std::string_view text);

} // namespace PlayerCommandText

} // namespace Ostrel
