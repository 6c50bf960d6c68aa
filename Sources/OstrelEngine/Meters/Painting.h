#pragma once

#include "OstrelEngine/Geometry.h"

#include <QColor>
#include <QRectF>

#include <array>
#include <cstdint>

class QPainter;

// Our records as Qt's. Values out of a skin may be huge or no number at all.
namespace Ostrel {

/// Far outside of every canvas, and near enough for the painter's fixed-point coordinates.
constexpr double FarCoordinate = 1 << 20;

/// Within the far coordinates; no number becomes 0.
double boundedCoordinate(double value);
/// Edges within the far coordinates, a negative size turned round.
QRectF toQRectF(const Rect& rect);
Rect toRect(const QRectF& rect);
QColor toQColor(const Color& color);
/// Red, green, blue, opacity.
inline QColor toQColor(const std::array<std::uint8_t, 4>& color) {
    return {color[0], color[1], color[2], color[3]};
}
/// Smooth at edges that lie within device pixels, if wanted.
void fillRect(QPainter& painter, const Rect& rect, const Color& color, bool antiAlias);

} // namespace Ostrel
