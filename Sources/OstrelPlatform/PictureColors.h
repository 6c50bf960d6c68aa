#pragma once

#include "OstrelPlatform/RGBColor.h"

#include <optional>
#include <string>

namespace Ostrel {

/// Looks at the pixels of pictures for measures, which draw nothing. Main thread.
class PictureColors {
public:
    virtual ~PictureColors() = default;
    /// The mean of the red, green and blue that the first picture of the file holds, whatever its alpha. Absent when it
    /// cannot be read or decoded, is too large, or has fewer than three bytes a pixel, as gray and indexed pictures
    /// have. A file that did not change is not decoded again.
    virtual std::optional<RGBColor> average(const std::string& path) = 0;
};

} // namespace Ostrel
