#pragma once

#include "OstrelEngine/Geometry.h"
#include "OstrelEngine/Meters/MeterProtocol.h"

#include <optional>

namespace Ostrel {

/// The size that a meter takes: the one its options give, and for each side that is not above 0 the one that its
/// shapes, its text or its image want. A side that nothing gives stays as it is.
Size inferredSize(MeterRenderer& meter, MeasureValues values, Size written);

/// Pixels of the image that the meter has loaded; absent for other meters, before loading, and when a side is 0.
std::optional<Size> loadedImageSize(const MeterRenderer& meter);

} // namespace Ostrel
