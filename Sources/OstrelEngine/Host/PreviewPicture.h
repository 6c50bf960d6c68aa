#pragma once

#include "OstrelEngine/Geometry.h"

#include <optional>
#include <string>

class QImage;

namespace Ostrel {

/// A PNG of what a widget of `size` points shows, a pixel a point, smoothly made smaller where its larger dimension
/// exceeds `maxDimension`; never made larger. Absent for a widget of a point or less in either dimension and for a
/// picture that is null.
std::optional<std::string> previewPNG(const QImage& picture, Size size, double maxDimension);

} // namespace Ostrel
