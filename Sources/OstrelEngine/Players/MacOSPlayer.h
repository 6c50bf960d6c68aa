#pragma once

#include "OstrelPlatform/Log.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace Ostrel {

/// The players that the names in skins come down to.
enum class MacOSPlayer : std::uint8_t { appleMusic, spotify };

/// The name of its application.
std::string_view appName(MacOSPlayer player);

/// The player that a skin means by a name, in any case. A player of another system is served by a present one, which is
/// told in the log. Absent when the name is none of a player.
std::optional<MacOSPlayer> macOSPlayerFrom(std::string_view rainmeterName, const LogLine& log);

} // namespace Ostrel
