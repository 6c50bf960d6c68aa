#pragma once

#include <QPainterPath>
#include <QPointF>
#include <QTransform>

#include <vector>

namespace Ostrel {

enum class StrokeCap { Flat, Round, Square, Triangle };
enum class StrokeJoin { Miter, Bevel, Round, MiterOrBevel };

struct StrokeStyle {
    double width = 1;
    StrokeCap startCap = StrokeCap::Flat;
    StrokeCap endCap = StrokeCap::Flat;
    StrokeCap dashCap = StrokeCap::Flat;
    StrokeJoin join = StrokeJoin::Miter;
    /// Length of a miter in half stroke widths, at least 1.
    double miterLimit = 10;
    /// Dash, gap, dash, ... in stroke widths; empty for a solid line. An odd list is repeated once.
    std::vector<double> dashes;
    /// How far into the list the path begins, in stroke widths.
    double dashOffset = 0;
};

/// The line around a shape, and what of it is stroked.
struct ShapeOutline {
    QPainterPath path;
    bool isClosed = false;
    /// The parts that are stroked when that is not the whole path at once, in its order.
    std::vector<QPainterPath> pieces;
    bool hasPieces = false;
    /// Where two pieces meet in a round join.
    std::vector<QPointF> roundJoins;
    /// Whether the ends of an open path are ends of its first and last piece.
    bool startIsStroked = true;
    bool endIsStroked = true;

    void transform(const QTransform& by);
};

/// The area that the stroke covers, to be filled by the nonzero rule. A pattern that gives more than 4096 dashes is
/// stroked as a solid line.
QPainterPath strokedArea(const ShapeOutline& outline, const StrokeStyle& style);

} // namespace Ostrel
