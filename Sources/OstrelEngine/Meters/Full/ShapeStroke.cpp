#include "OstrelEngine/Meters/Full/ShapeStroke.h"

#include <QLineF>
#include <QPainterPathStroker>
#include <QPolygonF>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

namespace Ostrel {

namespace {

constexpr double MostDashes = 4096;
/// Curves become straight pieces for dashes; so many times finer than the painter's own, which is for whole pixels.
constexpr double FlatteningScale = 8;

double signedArea(const QPolygonF& polygon) {
    double sum = 0;
    for (qsizetype i = 0; i < polygon.size(); ++i) {
        const QPointF& a = polygon[i];
        const QPointF& b = polygon[(i + 1) % polygon.size()];
        sum += a.x() * b.y() - b.x() * a.y();
    }
    return sum;
}

void configure(QPainterPathStroker& stroker, const StrokeStyle& style) {
    stroker.setWidth(style.width);
    stroker.setCapStyle(Qt::FlatCap);
    stroker.setCurveThreshold(0.1);
    // The stroker counts in whole widths. Of a bevelled miter it measures the length, and of one that is cut off how
    // far its edges go on, which is about half of the length.
    stroker.setMiterLimit(style.miterLimit / (style.join == StrokeJoin::Miter ? 4 : 2));
    switch (style.join) {
    case StrokeJoin::Miter:
        stroker.setJoinStyle(Qt::MiterJoin);
        break;
    case StrokeJoin::Bevel:
        stroker.setJoinStyle(Qt::BevelJoin);
        break;
    case StrokeJoin::Round:
        stroker.setJoinStyle(Qt::RoundJoin);
        break;
    case StrokeJoin::MiterOrBevel:
        stroker.setJoinStyle(Qt::SvgMiterJoin);
        break;
    }
}

/// Which way round the stroker goes about what it strokes: what is added must go the same way, or the nonzero rule
/// would cut it out.
bool strokesHavePositiveArea() {
    static const bool isPositive = [] {
        QPainterPath line;
        line.lineTo(10, 0);
        return signedArea(QPainterPathStroker().createStroke(line).toSubpathPolygons().value(0)) > 0;
    }();
    return isPositive;
}

void addOriented(QPainterPath& area, const QPainterPath& piece) {
    const bool isPositive = signedArea(piece.toSubpathPolygons().value(0)) > 0;
    area.addPath(isPositive == strokesHavePositiveArea() ? piece : piece.toReversed());
}

/// What a cap adds at an end of a line that goes there in the direction `out`, which has length 1.
void addCap(QPainterPath& area, const QPointF& end, const QPointF& out, double width, StrokeCap cap) {
    const double half = width / 2;
    const QPointF side(-out.y() * half, out.x() * half);
    const QPointF ahead = out * half;
    QPainterPath piece;
    switch (cap) {
    case StrokeCap::Flat:
        return;
    case StrokeCap::Round:
        piece.addEllipse(end, half, half);
        break;
    case StrokeCap::Square:
        piece.addPolygon(QPolygonF({end + side, end + side + ahead, end - side + ahead, end - side}));
        piece.closeSubpath();
        break;
    case StrokeCap::Triangle:
        piece.addPolygon(QPolygonF({end + side, end + ahead, end - side}));
        piece.closeSubpath();
        break;
    }
    addOriented(area, piece);
}

std::optional<QPointF> direction(const QPointF& from, const QPointF& to) {
    const double length = std::hypot(to.x() - from.x(), to.y() - from.y());
    if (!(length > 1e-9))
        return std::nullopt;
    return (to - from) / length;
}

/// Out of the path's start, or out of its end. A path without length lies along x.
QPointF outwards(const QPainterPath& path, bool atStart) {
    const int count = path.elementCount();
    const auto at = [&](int i) { return QPointF(path.elementAt(atStart ? i : count - 1 - i)); };
    for (int i = 1; i < count; ++i)
        if (const auto out = direction(at(i), at(0)))
            return *out;
    return {atStart ? -1.0 : 1.0, 0};
}

class Stroke {
public:
    explicit Stroke(const StrokeStyle& style)
        : style_(style) {
        configure(stroker_, style);
        area_.setFillRule(Qt::WindingFill);
    }

    void addClosed(const QPainterPath& path) { area_.addPath(stroker_.createStroke(path)); }

    void addOpen(QPainterPath path, StrokeCap start, StrokeCap end) {
        const int last = path.elementCount() - 1;
        if (last < 0)
            return;
        // The stroker would join ends that meet.
        if (last > 0 && QPointF(path.elementAt(0)) == QPointF(path.elementAt(last)))
            path.setElementPositionAt(last, path.elementAt(last).x + 1e-5, path.elementAt(last).y + 1e-5);
        area_.addPath(stroker_.createStroke(path));
        addCap(area_, path.elementAt(0), outwards(path, true), style_.width, start);
        addCap(area_, path.elementAt(path.elementCount() - 1), outwards(path, false), style_.width, end);
    }

    void addDashed(const QPainterPath& path, const std::vector<double>& pattern, StrokeCap start, StrokeCap end) {
        const QTransform finer = QTransform::fromScale(FlatteningScale, FlatteningScale);
        for (const QPolygonF& polygon : path.toSubpathPolygons(finer))
            addDashes(polygon, pattern, start, end);
    }

    void addRoundJoin(const QPointF& at) { addCap(area_, at, {1, 0}, style_.width, StrokeCap::Round); }
    QPainterPath area() && { return std::move(area_); }

private:
    void addDashes(const QPolygonF& finePolygon, const std::vector<double>& pattern, StrokeCap start, StrokeCap end) {
        std::vector<QPointF> points;
        for (const QPointF& point : finePolygon)
            points.push_back(point / FlatteningScale);
        std::size_t item = 0;
        double left = skipOffset(pattern, item);
        bool isFirst = true;
        QPainterPath dash;
        const auto begin = [&](const QPointF& at) {
            dash = QPainterPath(at);
            // A dash without length has the direction of its line only.
            dashDirection_.reset();
        };
        if (item % 2 == 0 && !points.empty())
            begin(points.front());
        for (std::size_t i = 1; i < points.size(); ++i) {
            QPointF from = points[i - 1];
            const auto way = direction(from, points[i]);
            if (!way)
                continue;
            double remaining = QLineF(from, points[i]).length();
            dashDirection_ = way;
            while (left <= remaining) {
                from += *way * left;
                remaining -= left;
                if (item % 2 == 0) {
                    dash.lineTo(from);
                    finishDash(dash, isFirst ? start : style_.dashCap, style_.dashCap);
                } else {
                    begin(from);
                    dashDirection_ = way;
                }
                isFirst = false;
                item = (item + 1) % pattern.size();
                left = pattern[item];
            }
            left -= remaining;
            if (item % 2 == 0)
                dash.lineTo(points[i]);
        }
        if (item % 2 == 0 && dash.elementCount() > 1)
            finishDash(dash, isFirst ? start : style_.dashCap, end);
    }

    double skipOffset(const std::vector<double>& pattern, std::size_t& item) const {
        const double whole = std::accumulate(pattern.begin(), pattern.end(), 0.0);
        double offset = std::fmod(style_.dashOffset * style_.width, whole);
        if (offset < 0)
            offset += whole;
        while (offset >= pattern[item] && (offset > 0 || pattern[item] > 0)) {
            offset -= pattern[item];
            item = (item + 1) % pattern.size();
        }
        return pattern[item] - offset;
    }

    void finishDash(const QPainterPath& dash, StrokeCap start, StrokeCap end) {
        if (dash.elementCount() > 1) {
            addOpen(dash, start, end);
            return;
        }
        const QPointF way = dashDirection_.value_or(QPointF(1, 0));
        addCap(area_, dash.elementAt(0), -way, style_.width, start);
        addCap(area_, dash.elementAt(0), way, style_.width, end);
    }

    const StrokeStyle& style_;
    QPainterPathStroker stroker_;
    QPainterPath area_;
    std::optional<QPointF> dashDirection_;
};

/// In points; empty where a solid line is to be drawn.
std::vector<double> dashPattern(const StrokeStyle& style, double length) {
    std::vector<double> pattern;
    for (const double item : style.dashes)
        pattern.push_back(std::max(0.0, item) * style.width);
    if (pattern.size() % 2 == 1)
        pattern.insert(pattern.end(), pattern.begin(), pattern.end());
    const double whole = std::accumulate(pattern.begin(), pattern.end(), 0.0);
    const double dashes = length / whole * static_cast<double>(pattern.size()) / 2;
    if (!(whole > 0) || !(dashes <= MostDashes))
        return {};
    return pattern;
}

} // namespace

void ShapeOutline::transform(const QTransform& by) {
    path = by.map(path);
    for (auto& piece : pieces)
        piece = by.map(piece);
    for (auto& point : roundJoins)
        point = by.map(point);
}

QPainterPath strokedArea(const ShapeOutline& outline, const StrokeStyle& style) {
    Stroke stroke(style);
    std::vector<double> pattern;
    if (!style.dashes.empty())
        pattern = dashPattern(style, outline.path.length());
    const auto addOpen = [&](const QPainterPath& path, StrokeCap start, StrokeCap end) {
        if (pattern.empty())
            stroke.addOpen(path, start, end);
        else
            stroke.addDashed(path, pattern, start, end);
    };
    if (!outline.hasPieces && outline.isClosed) {
        if (pattern.empty())
            stroke.addClosed(outline.path);
        else
            stroke.addDashed(outline.path, pattern, style.dashCap, style.dashCap);
    } else if (!outline.hasPieces) {
        addOpen(outline.path, style.startCap, style.endCap);
    } else {
        const auto capIf
            = [&](bool isEnd, StrokeCap cap) { return isEnd && !outline.isClosed ? cap : StrokeCap::Flat; };
        for (std::size_t i = 0; i < outline.pieces.size(); ++i) {
            const bool isLast = i + 1 == outline.pieces.size();
            addOpen(outline.pieces[i], capIf(i == 0 && outline.startIsStroked, style.startCap),
                capIf(isLast && outline.endIsStroked, style.endCap));
        }
        for (const QPointF& join : outline.roundJoins)
            stroke.addRoundJoin(join);
    }
    return std::move(stroke).area();
}

} // namespace Ostrel
