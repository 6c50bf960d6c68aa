#include "OstrelEngine/Meters/Full/ShapeOutlines.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QLineF>
#include <QRectF>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

namespace Ostrel::ShapeOutlines {

namespace {

constexpr int MostElementsCombined = 2000;
/// So many boxes are compared in the time that one crossing takes the toolkit.
constexpr double BoxesPerCrossing = 2000;

/// The numbers of a shape or segment; "*" and what is missing are the default.
class Numbers {
public:
    explicit Numbers(std::string_view text)
        : numbers_(OptionValues::numbers(text, ',')) {
        // A comma at the end does no harm.
        if (!numbers_.empty() && !numbers_.back() && trimmed(text).ends_with(','))
            numbers_.pop_back();
    }

    std::size_t count() const { return numbers_.size(); }
    bool has(std::size_t count) const {
        return numbers_.size() >= count
            && std::all_of(numbers_.begin(), numbers_.begin() + static_cast<std::ptrdiff_t>(count),
                [](const auto& number) { return number.has_value(); });
    }
    double at(std::size_t i, double fallback = 0) const {
        return i < numbers_.size() && numbers_[i] ? boundedCoordinate(*numbers_[i]) : fallback;
    }
    QPointF point(std::size_t i) const { return {at(i), at(i + 1)}; }

private:
    std::vector<std::optional<double>> numbers_;
};

/// The arc between two points as SVG 2 defines it (appendix B.2.4), in pieces of at most a quarter turn.
void arcTo(QPainterPath& path, QPointF end, double rx, double ry, double degrees, bool isClockwise, bool isLarge) {
    const QPointF start = path.currentPosition();
    if (start == end)
        return;
    const double turn = degrees * std::numbers::pi / 180;
    const double cosine = std::cos(turn);
    const double sine = std::sin(turn);
    const QPointF half = (start - end) / 2;
    // Half the way between the points, along the ellipse's axes.
    const double x = cosine * half.x() + sine * half.y();
    const double y = -sine * half.x() + cosine * half.y();
    rx = std::abs(rx);
    ry = std::abs(ry);
    if (!(rx > 1e-9) || !(ry > 1e-9)) {
        path.lineTo(end);
        return;
    }
    const double tooFar = x * x / (rx * rx) + y * y / (ry * ry);
    if (tooFar > 1) {
        rx *= std::sqrt(tooFar);
        ry *= std::sqrt(tooFar);
    }
    const double across = rx * rx * y * y + ry * ry * x * x;
    const double factor = std::sqrt(std::max(0.0, rx * rx * ry * ry / across - 1)) * (isLarge == isClockwise ? -1 : 1);
    const QPointF center(factor * rx * y / ry, -factor * ry * x / rx);
    const double from = std::atan2((y - center.y()) / ry, (x - center.x()) / rx);
    double sweep = std::atan2((-y - center.y()) / ry, (-x - center.x()) / rx) - from;
    if (isClockwise && sweep < 0)
        sweep += 2 * std::numbers::pi;
    if (!isClockwise && sweep > 0)
        sweep -= 2 * std::numbers::pi;

    const QPointF middle = (start + end) / 2;
    const auto onPage = [&](double u, double v) {
        const QPointF p = center + QPointF(u * rx, v * ry);
        return QPointF(cosine * p.x() - sine * p.y(), sine * p.x() + cosine * p.y()) + middle;
    };
    const int pieces = std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / (std::numbers::pi / 2) - 1e-9)));
    const double step = sweep / pieces;
    const double reach = 4.0 / 3 * std::tan(step / 4);
    for (int i = 0; i < pieces; ++i) {
        const double a = from + i * step;
        const double b = a + step;
        const QPointF target = i + 1 == pieces ? end : onPage(std::cos(b), std::sin(b));
        path.cubicTo(onPage(std::cos(a) - reach * std::sin(a), std::sin(a) + reach * std::cos(a)),
            onPage(std::cos(b) + reach * std::sin(b), std::sin(b) - reach * std::cos(b)), target);
    }
}

/// "X,Y[,RX,RY,Rot,Sweep,Size]" from the number `first` on.
void arcTo(QPainterPath& path, const Numbers& numbers, std::size_t first) {
    const QPointF end = numbers.point(first);
    const double rx = numbers.at(first + 2, QLineF(path.currentPosition(), end).length() / 2);
    arcTo(path, end, rx, numbers.at(first + 3, rx), numbers.at(first + 4), numbers.at(first + 5) == 0,
        numbers.at(first + 6) != 0);
}

/// "X,Y,C1X,C1Y[,C2X,C2Y]" from the number `first` on.
void curveTo(QPainterPath& path, const Numbers& numbers, std::size_t first, bool isCubic) {
    if (isCubic)
        path.cubicTo(numbers.point(first + 2), numbers.point(first + 4), numbers.point(first));
    else
        path.quadTo(numbers.point(first + 2), numbers.point(first));
}

/// Reads the segments of a path and notes which of them are stroked together.
class PathReader {
public:
    explicit PathReader(bool isNonzero) { outline_.path.setFillRule(isNonzero ? Qt::WindingFill : Qt::OddEvenFill); }

    bool start(std::string_view item) {
        const Numbers numbers(item);
        if (!numbers.has(2))
            return false;
        start_ = numbers.point(0);
        outline_.path.moveTo(start_);
        return true;
    }

    bool read(std::string_view item) {
        const auto blank = item.find_first_of(" \t");
        const auto word = item.substr(0, blank);
        const auto rest = blank == std::string_view::npos ? std::string_view() : trimmed(item.substr(blank));
        if (word.empty())
            return true;
        if (equalsIgnoringCase(word, "SetRoundJoin"))
            return readSwitch(rest, hasRoundJoin_);
        if (equalsIgnoringCase(word, "SetNoStroke"))
            return readSwitch(rest, isUnstroked_);
        if (equalsIgnoringCase(word, "ClosePath"))
            return readSwitch(rest, outline_.isClosed);
        const Numbers numbers(rest);
        if (equalsIgnoringCase(word, "LineTo") && numbers.has(2))
            return addSegment([&](QPainterPath& path) { path.lineTo(numbers.point(0)); });
        if (equalsIgnoringCase(word, "ArcTo") && numbers.has(2))
            return addSegment([&](QPainterPath& path) { arcTo(path, numbers, 0); });
        if (equalsIgnoringCase(word, "CurveTo") && numbers.has(4))
            return addSegment([&](QPainterPath& path) { curveTo(path, numbers, 0, numbers.has(6)); });
        return false;
    }

    std::size_t elementCount() const { return static_cast<std::size_t>(outline_.path.elementCount()); }

    ShapeOutline finish() && {
        if (outline_.isClosed) {
            addSegment([&](QPainterPath& path) { path.lineTo(start_); });
            joinEnds();
            outline_.path.closeSubpath();
        }
        std::erase_if(outline_.pieces, [](const QPainterPath& piece) { return piece.elementCount() < 2; });
        return std::move(outline_);
    }

private:
    static bool readSwitch(std::string_view text, bool& value) {
        const auto isOn = OptionValues::isOn(text);
        value = isOn.value_or(value);
        return isOn.has_value();
    }

    template <typename Add> bool addSegment(const Add& add) {
        const QPointF from = outline_.path.currentPosition();
        const bool isFirst = segments_++ == 0;
        add(outline_.path);
        if (isFirst)
            outline_.startIsStroked = !isUnstroked_;
        outline_.endIsStroked = !isUnstroked_;
        outline_.hasPieces |= isUnstroked_ || hasRoundJoin_;
        if (isFirst)
            firstHasRoundJoin_ = hasRoundJoin_ && !isUnstroked_;
        const bool continues = !isFirst && !lastIsUnstroked_;
        lastIsUnstroked_ = isUnstroked_;
        if (isUnstroked_)
            return true;
        if (continues && hasRoundJoin_)
            outline_.roundJoins.push_back(from);
        if (!continues || hasRoundJoin_)
            outline_.pieces.emplace_back(from);
        add(outline_.pieces.back());
        return true;
    }

    /// At its start a closed path has a join as at its other corners.
    void joinEnds() {
        auto& pieces = outline_.pieces;
        if (!outline_.hasPieces || !outline_.startIsStroked || lastIsUnstroked_ || pieces.empty())
            return;
        if (firstHasRoundJoin_) {
            outline_.roundJoins.push_back(start_);
        } else if (pieces.size() > 1) {
            pieces.back().connectPath(pieces.front());
            std::swap(pieces.front(), pieces.back());
            pieces.pop_back();
        }
    }

    ShapeOutline outline_;
    QPointF start_;
    std::size_t segments_ = 0;
    bool hasRoundJoin_ = false;
    bool isUnstroked_ = false;
    bool firstHasRoundJoin_ = false;
    bool lastIsUnstroked_ = false;
};

std::optional<ShapeOutline> finished(QPainterPath path, bool isClosed) {
    ShapeOutline outline;
    if (isClosed)
        path.closeSubpath();
    outline.path = std::move(path);
    outline.isClosed = isClosed;
    return outline;
}

void addSegmentBoxes(std::vector<QRectF>& boxes, const QPainterPath& path) {
    for (int i = 1; i < path.elementCount(); ++i) {
        if (path.elementAt(i).isMoveTo())
            continue;
        // A curve has its end two elements further on.
        const int last = path.elementAt(i).isCurveTo() ? i + 2 : i;
        QRectF box(path.elementAt(i - 1), QSizeF(0, 0));
        for (; i <= last; ++i) {
            const QPointF point = path.elementAt(i);
            box.setCoords(std::min(box.left(), point.x()), std::min(box.top(), point.y()),
                std::max(box.right(), point.x()), std::max(box.bottom(), point.y()));
        }
        i = last;
        boxes.push_back(box);
    }
}

/// How many segments of the two paths may cross each other or those of their own path.
double combinationCost(const QPainterPath& parent, const QPainterPath& child) {
    std::vector<QRectF> boxes;
    addSegmentBoxes(boxes, parent);
    addSegmentBoxes(boxes, child);
    double crossings = 0;
    for (std::size_t i = 0; i < boxes.size(); ++i)
        for (std::size_t k = i + 1; k < boxes.size(); ++k)
            crossings += boxes[i].left() < boxes[k].right() && boxes[k].left() < boxes[i].right()
                && boxes[i].top() < boxes[k].bottom() && boxes[k].top() < boxes[i].bottom();
    const auto count = static_cast<double>(boxes.size());
    return crossings + count * count / BoxesPerCrossing;
}

std::optional<ShapeOutline> rectangle(const Numbers& numbers) {
    if (!numbers.has(4))
        return std::nullopt;
    const QRectF rect = QRectF(numbers.point(0), QSizeF(numbers.at(2), numbers.at(3))).normalized();
    const double rx = std::clamp(numbers.at(4), 0.0, rect.width() / 2);
    const double ry = std::clamp(numbers.at(5, numbers.at(4)), 0.0, rect.height() / 2);
    QPainterPath path;
    if (rx > 0 && ry > 0) {
        path.addRoundedRect(rect, rx, ry);
    } else {
        // Not addRect, which leaves out a rectangle without area that may still have a stroke.
        path.moveTo(rect.topLeft());
        path.lineTo(rect.topRight());
        path.lineTo(rect.bottomRight());
        path.lineTo(rect.bottomLeft());
    }
    return finished(std::move(path), true);
}

std::optional<ShapeOutline> ellipse(const Numbers& numbers) {
    if (!numbers.has(3))
        return std::nullopt;
    const double rx = std::abs(numbers.at(2));
    const double ry = std::abs(numbers.at(3, rx));
    QPainterPath path;
    path.addEllipse(numbers.point(0), rx, ry);
    return finished(std::move(path), true);
}

} // namespace

std::optional<ShapeOutline> basicShape(std::string_view kind, std::string_view text) {
    const Numbers numbers(text);
    if (equalsIgnoringCase(kind, "Rectangle"))
        return rectangle(numbers);
    if (equalsIgnoringCase(kind, "Ellipse"))
        return ellipse(numbers);
    QPainterPath path(numbers.point(0));
    if (equalsIgnoringCase(kind, "Line") && numbers.has(4)) {
        path.lineTo(numbers.point(2));
        return finished(std::move(path), false);
    }
    if (equalsIgnoringCase(kind, "Arc") && numbers.has(4)) {
        arcTo(path, numbers, 2);
        return finished(std::move(path), numbers.at(9) != 0);
    }
    if (equalsIgnoringCase(kind, "Curve") && numbers.has(6)) {
        const bool isCubic = numbers.count() >= 8;
        curveTo(path, numbers, 2, isCubic);
        return finished(std::move(path), numbers.at(isCubic ? 8 : 6) != 0);
    }
    return std::nullopt;
}

std::optional<ShapeOutline> path(std::string_view text, bool isNonzero, std::size_t most) {
    PathReader reader(isNonzero);
    bool isStarted = false;
    while (!text.empty()) {
        const auto bar = text.find('|');
        const auto item = trimmed(text.substr(0, bar));
        text = bar == std::string_view::npos ? std::string_view() : text.substr(bar + 1);
        if (!isStarted && item.empty())
            continue;
        if (!(isStarted ? reader.read(item) : reader.start(item)) || reader.elementCount() > most)
            return std::nullopt;
        isStarted = true;
    }
    return isStarted ? std::optional(std::move(reader).finish()) : std::nullopt;
}

std::optional<QPainterPath> combined(
    const QPainterPath& parent, const QPainterPath& child, Combination how, double& budget) {
    if (parent.elementCount() + child.elementCount() > MostElementsCombined)
        return std::nullopt;
    budget -= combinationCost(parent, child);
    if (budget < 0)
        return std::nullopt;
    switch (how) {
    case Combination::Union:
        return parent.united(child);
    case Combination::Intersect:
        return parent.intersected(child);
    case Combination::Exclude:
        return parent.subtracted(child);
    case Combination::ExclusiveOr:
        break;
    }
    QPainterPath result = parent.subtracted(child);
    result.addPath(child.subtracted(parent));
    return result;
}

} // namespace Ostrel::ShapeOutlines
