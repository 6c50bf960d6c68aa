#pragma once

namespace Ostrel {

/// Components 0 to 1.
struct RGBColor {
    double red = 0;
    double green = 0;
    double blue = 0;

    friend bool operator==(const RGBColor&, const RGBColor&) = default;
};

} // namespace Ostrel
