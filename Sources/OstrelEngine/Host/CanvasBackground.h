#pragma once

#include "OstrelEngine/Geometry.h"

#include <QImage>

#include <cstdint>
#include <optional>

class QPainter;

namespace Ostrel {

/// Margins of a nine-slice, in pixels of the image and points of the widget alike.
struct BackgroundMargins {
    double top = 0;
    double right = 0;
    double bottom = 0;
    double left = 0;

    friend bool operator==(const BackgroundMargins&, const BackgroundMargins&) = default;
};

/// What lies under the meters: nothing, a color or an image, stretched whole or in nine pieces.
class CanvasBackground {
public:
    std::int64_t mode = 0;
    BackgroundMargins margins;
    std::optional<Color> solidColor;
    /// Null without one.
    QImage image;

    /// Replaces what stands in `pixels` of a picture that shows a widget of that size at `scale` pixels a point. The
    /// painter's coordinates are those pixels.
    void paint(QPainter& painter, const QRect& pixels, Size size, double scale);

private:
    bool showsImage() const { return !image.isNull() && mode != 1 && mode != 2; }
    const QImage& stretched(Size size, double scale);

    /// The image as it lies in the widget, kept for the size and scale it was last asked for: stretching it costs as
    /// much as all else of a paint.
    QImage stretched_;
    Size stretchedSize_;
    double stretchedScale_ = 0;
};

} // namespace Ostrel
