#pragma once

#include "OstrelPlatform/RGBColor.h"

#include <optional>

class QImage;

namespace Ostrel {

/// The mean of each channel over all pixels, whatever their alpha. Absent without pixels, and with fewer than three
/// bytes for each.
std::optional<RGBColor> averageColor(const QImage& image);

} // namespace Ostrel
