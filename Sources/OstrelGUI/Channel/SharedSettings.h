#pragma once

#include <string_view>

/// The settings that the main window may read and change, by their keys. All others are the resident process's own.
namespace Ostrel::SharedSettings {

/// The name of an application; empty when each skin is to decide.
inline constexpr std::string_view targetMediaPlayer = "targetMediaPlayer";

inline constexpr std::string_view texts[] = {targetMediaPlayer, "packChoices", "newPacks"};
inline constexpr std::string_view switches[] = {"reverseCommandScrollDirection"};

} // namespace Ostrel::SharedSettings
