#pragma once

#include "OstrelEngine/Meters/Text/GlyphBitmaps.h"

#include <QImage>
#include <QRect>

#include <array>
#include <vector>

namespace Ostrel {

/// The picture in which a line of text is put together before it goes to the painter as one image. Its memory is kept
/// from line to line.
class LineImage {
public:
    /// Transparent, over this part of the device.
    void begin(const QRect& deviceRect);
    QPoint topLeft() const { return rect_.topLeft(); }
    /// A view, valid until the next `begin`.
    QImage view();

    // Colors are premultiplied.

    /// The color of the glyphs that follow.
    void setColor(QRgb color);
    /// Lays a glyph over what is there, its origin at a place of the device.
    void blend(const GlyphBitmap& glyph, QPoint origin);
    void fill(const QRect& deviceRect);
    /// Keeps nothing but the opacity, blurred, as the opacity of this color. The blur is in device pixels.
    void turnIntoShadow(double standardDeviation, QRgb color);

private:
    /// The color at each coverage.
    std::array<QRgb, 256> ramp_{};
    QRect rect_;
    std::vector<QRgb> pixels_;
};

} // namespace Ostrel
