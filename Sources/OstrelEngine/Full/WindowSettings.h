#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelEngine/Full/FullSkinHost.h"
#include "OstrelEngine/Geometry.h"

#include <optional>
#include <string_view>

// What a skin's window is told by options and bangs.
namespace Ostrel {

/// The settings of a config that is shown for the first time, by its own section.
WindowSettings firstWindowSettings(const Options& skinOptions);
/// Where such a window stands. Absent when the skin does not say.
std::optional<ScreenPoint> firstWindowPosition(const Options& skinOptions, const SkinPlace& place, Size window);

/// The top left corner that two coordinates mean: a number or a formula, "%" of the screen, "R" or "B" from its right
/// or bottom edge, "@N" for another screen, 0 for all of them as one. The anchor is the window's point that is placed,
/// in the same forms. A coordinate that is none leaves the window where it is in that direction.
ScreenPoint windowPosition(
    std::string_view x, std::string_view y, const WindowSettings& settings, const SkinPlace& place, Size window);

} // namespace Ostrel
