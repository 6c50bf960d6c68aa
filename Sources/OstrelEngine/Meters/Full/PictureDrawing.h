#pragma once

#include "OstrelEngine/Geometry.h"

#include <string_view>

class QImage;
class QPainter;
class QRectF;

namespace Ostrel {

/// Strips along the edges of a picture that keep their size when it is stretched, in pixels.
struct PictureMargins {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    /// From "left,top,right,bottom"; what is missing or negative is 0.
    static PictureMargins parse(std::string_view text);
    bool isEmpty() const { return left <= 0 && top <= 0 && right <= 0 && bottom <= 0; }
    friend bool operator==(const PictureMargins&, const PictureMargins&) = default;
};

/// Where a picture goes in a rectangle.
enum class PictureFit { Stretch, Inside, Fill };

namespace PictureDrawing {

/// The picture's place, centered on the rectangle; with `Fill` it reaches beyond it.
Rect placed(const QImage& picture, const Rect& rect, PictureFit fit);

// Painters of a DevicePicture: what they draw may depend on the clip.

/// Nine pieces, of which the corners keep their size, the edges their thickness.
void drawInPieces(QPainter& painter, const QImage& picture, const QRectF& rect, PictureMargins margins);
/// Unscaled, again and again from the top left.
void drawTiled(QPainter& painter, const QImage& picture, const QRectF& rect);
/// The picture fills the rectangle and the mask is stretched to it; of the two opacities the smaller one shows.
void drawMasked(QPainter& painter, const QImage& picture, const QImage& mask, const Rect& rect);

} // namespace PictureDrawing

} // namespace Ostrel
