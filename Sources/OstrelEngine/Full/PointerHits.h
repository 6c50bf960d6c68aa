#pragma once

#include "OstrelEngine/Geometry.h"

#include <cstddef>
#include <vector>

namespace Ostrel {

class FullSkin;

/// What of a skin lies under a point.
struct PointerHits {
    /// The places of the meters, topmost first.
    std::vector<std::size_t> meters;
    /// Whether the skin shows anything there: a place that it does not belongs to what is behind the window.
    bool isSolid = false;

    bool contains(std::size_t meter) const;
};

/// A meter is under the point when its box holds it and the picture is not fully transparent there, by the meter or by
/// what lies behind it; one with an area of its own when its own pixel is painted. A text counts with its whole box.
/// Only what could paint the point is drawn, into one pixel.
PointerHits pointerHits(const FullSkin& skin, Point point);

/// Whether the meter is shown and its own picture is painted at the point, whatever lies behind it.
bool isOwnPictureAt(const FullSkin& skin, std::size_t meter, Point point);

} // namespace Ostrel
