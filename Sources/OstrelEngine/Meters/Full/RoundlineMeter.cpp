#include "OstrelEngine/Meters/Full/RoundlineMeter.h"

#include "OstrelEngine/Meters/Painting.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace Ostrel {

namespace {

constexpr double FullTurn = 2 * std::numbers::pi;

struct Style {
    double startAngle = 0;
    double rotationAngle = FullTurn;
    double lineStart = 0;
    double lineLength = 0;
    double startShift = 0;
    double lengthShift = 0;
    double lineWidth = 1;
    QColor color;
    bool isSolid = false;
    bool controlsAngle = true;
    ValueShare share;
    /// From the content's top left.
    QPointF center;
};

/// What is drawn; radians clockwise from the right.
struct Hand {
    double from = 0;
    double to = 0;
    double inner = 0;
    double outer = 0;
    QPointF center;
    double width = 1;
    QColor color;
    bool isSolid = false;

    friend bool operator==(const Hand&, const Hand&) = default;
};

Hand handOf(const Style& style, double share) {
    Hand hand;
    hand.from = style.startAngle;
    hand.to = style.startAngle + (style.controlsAngle ? share * style.rotationAngle : 0);
    // A sector whose angle is not controlled is the whole ring.
    if (style.isSolid && !style.controlsAngle)
        hand.to = hand.from + FullTurn;
    hand.inner = style.lineStart + share * style.startShift;
    hand.outer = style.lineLength + share * style.lengthShift;
    hand.center = style.center;
    hand.width = style.lineWidth;
    hand.color = style.color;
    hand.isSolid = style.isSolid;
    return hand;
}

/// As an area: the painter's own line has other pixels at the edge of a clip.
QPainterPath lineOf(const Hand& hand) {
    const QPointF way(std::cos(hand.to), std::sin(hand.to));
    const QPointF side(-way.y() * hand.width / 2, way.x() * hand.width / 2);
    QPainterPath path(hand.center + way * hand.inner + side);
    path.lineTo(hand.center + way * hand.outer + side);
    path.lineTo(hand.center + way * hand.outer - side);
    path.lineTo(hand.center + way * hand.inner - side);
    path.closeSubpath();
    return path;
}

QRectF square(const QPointF& center, double radius) {
    return {center.x() - radius, center.y() - radius, 2 * radius, 2 * radius};
}

QPainterPath sectorOf(const Hand& hand) {
    const double inner = std::max(0.0, std::min(hand.inner, hand.outer));
    const double outer = std::max({0.0, hand.inner, hand.outer});
    QPainterPath path;
    const double turn = hand.to - hand.from;
    if (turn == 0 || outer <= inner)
        return path;
    if (std::abs(turn) >= FullTurn) {
        path.addEllipse(hand.center, outer, outer);
        if (inner > 0)
            path.addEllipse(hand.center, inner, inner);
        return path;
    }
    // The path counts degrees the other way round.
    const auto degrees = [](double radians) { return -radians * 180 / std::numbers::pi; };
    path.arcMoveTo(square(hand.center, outer), degrees(hand.from));
    path.arcTo(square(hand.center, outer), degrees(hand.from), degrees(turn));
    if (inner > 0)
        path.arcTo(square(hand.center, inner), degrees(hand.to), -degrees(turn));
    else
        path.lineTo(hand.center);
    path.closeSubpath();
    return path;
}

} // namespace

struct RoundlineMeter::State {
    Style style;
    Hand hand;
    QPainterPath area;
    QRectF bounds;
};

RoundlineMeter::RoundlineMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context)
    : FullMeter(definition, std::move(options), context)
    , state_(std::make_unique<State>()) { }

RoundlineMeter::~RoundlineMeter() = default;

void RoundlineMeter::readOptions() {
    const auto bounded
        = [this](const CaseKey& key, double fallback) { return boundedCoordinate(number(key, fallback)); };
    Style style;
    style.startAngle = bounded("StartAngle"_key, 0);
    style.rotationAngle = bounded("RotationAngle"_key, FullTurn);
    style.lineStart = bounded("LineStart"_key, 0);
    style.lineLength = bounded("LineLength"_key, 0);
    style.startShift = isOn("ControlStart"_key, false) ? bounded("StartShift"_key, 0) : 0;
    style.lengthShift = isOn("ControlLength"_key, false) ? bounded("LengthShift"_key, 0) : 0;
    style.lineWidth = std::max(0.0, bounded("LineWidth"_key, 1));
    style.color = toQColor(color("LineColor"_key, {255, 255, 255, 255}));
    style.isSolid = isOn("Solid"_key, false);
    style.controlsAngle = isOn("ControlAngle"_key, true);
    style.share = ValueShare::of(text("ValueRemainder"_key), text("ValueReminder"_key));
    style.center = {writtenWidth().value_or(0) / 2, writtenHeight().value_or(0) / 2};
    state_->style = style;
}

void RoundlineMeter::takeValues(MeasureValues values) {
    const bool isBound = !values.empty() && !text("MeasureName"_key).empty();
    const auto& style = state_->style;
    const Hand hand = handOf(style, isBound ? style.share.at(values.front()) : 1);
    if (hand == state_->hand)
        return;
    const QRectF before = state_->bounds;
    state_->hand = hand;
    state_->area = hand.isSolid ? sectorOf(hand) : lineOf(hand);
    state_->bounds = state_->area.boundingRect();
    state_->bounds.adjust(-1, -1, 1, 1);
    contentDidChange(toRect(before.isNull() ? state_->bounds : before.united(state_->bounds)));
}

Size RoundlineMeter::contentSize(std::optional<double> width, std::optional<double> height) const {
    return {width.value_or(0), height.value_or(0)};
}

Rect RoundlineMeter::contentPaintRect() const {
    const Rect content = contentRect();
    return toRect(toQRectF(toRect(state_->bounds).translated(content.x, content.y)));
}

void RoundlineMeter::drawContent(QPainter& painter) {
    const auto& hand = state_->hand;
    if (hand.color.alpha() == 0)
        return;
    const QPointF corner = toQRectF(contentRect()).topLeft();
    painter.setRenderHint(QPainter::Antialiasing, isSmooth(false));
    painter.translate(corner);
    painter.fillPath(state_->area, hand.color);
    painter.translate(-corner);
}

} // namespace Ostrel
