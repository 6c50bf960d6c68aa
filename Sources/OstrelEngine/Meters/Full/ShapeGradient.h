#pragma once

#include <QBrush>
#include <QGradient>
#include <QRectF>
#include <QTransform>

#include <optional>
#include <string_view>

namespace Ostrel {

/// A gradient as an option writes it: its direction or middle, and its colors.
struct ShapeGradient {
    bool isRadial = false;
    /// Degrees; the start lies there from the middle, clockwise from the right.
    double angle = 0;
    /// From the middle of the shape, and from there to the focus.
    double centerX = 0;
    double centerY = 0;
    double focusX = 0;
    double focusY = 0;
    /// Absent: half the shape's size.
    std::optional<double> radiusX;
    std::optional<double> radiusY;
    /// At places 0 to 1, in order, at least one.
    QGradientStops stops;

    /// "angle | color ; place | ..." or "CX,CY[,OX,OY[,RX,RY]] | color ; place | ...". Absent without a color. At most
    /// 256 colors are read. `mixesLight`: colors are mixed by their light and not by their numbers.
    static std::optional<ShapeGradient> parse(std::string_view text, bool isRadial, bool mixesLight);

    /// For a shape that has this box before `transform`.
    QBrush brush(const QRectF& box, const QTransform& transform) const;
};

} // namespace Ostrel
