#pragma once

#include "OstrelEngine/Geometry.h"

#include <optional>
#include <string_view>

namespace Ostrel::ColorParser {

/// "r,g,b" or "r,g,b,a" with integers, clamped to 0...255; any other text is absent.
std::optional<Color> parse(std::string_view text);
/// The default stands for an absent text and for one that does not parse.
Color parse(std::optional<std::string_view> text, const Color& defaultColor);

} // namespace Ostrel::ColorParser
