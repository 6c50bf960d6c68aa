#pragma once

#include <string>

namespace Ostrel {

struct RGBColor;

/// "R,G,B,255" with channels of 0 to 255, rounded to the nearest.
std::string colorText(const RGBColor& color);

} // namespace Ostrel
