#include "OstrelEngine/Meters/BarMeter.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/PositionParser.h"
#include "OstrelEngine/Meters/ColorParser.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QPainter>
#include <QTransform>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string_view>
#include <utility>

namespace Ostrel {

namespace {

/// Six numbers in the order a, b, c, d, tx, ty.
std::optional<QTransform> parseTransformationMatrix(std::string_view text) {
    std::array<double, 6> numbers{};
    std::size_t count = 0;
    for (const auto part : split(text, ';')) {
        for (const auto untrimmed : split(part, ',')) {
            const auto piece = trimmed(untrimmed);
            if (piece.empty())
                continue;
            if (count == numbers.size())
                return std::nullopt;
            numbers[count++] = boundedCoordinate(PositionParser::parseDimension(piece));
        }
    }
    if (count != numbers.size())
        return std::nullopt;
    return QTransform(numbers[0], numbers[1], numbers[2], numbers[3], numbers[4], numbers[5]);
}

struct Style {
    Color barColor;
    std::optional<Color> solidColor;
    std::optional<QTransform> transform;
    bool isVertical = false;
    bool antiAlias = true;

    friend bool operator==(const Style&, const Style&) = default;
};

Style parseStyle(const Options& options) {
    Style style;
    style.barColor = ColorParser::parse(option(options, "BarColor"_key), {0, 1, 0, 1});
    style.solidColor = ColorParser::parse(option(options, "SolidColor"_key).value_or(""));
    style.transform = parseTransformationMatrix(option(options, "TransformationMatrix"_key).value_or(""));
    style.isVertical = equalsIgnoringCase(option(options, "BarOrientation"_key).value_or(""), "VERTICAL");
    style.antiAlias = option(options, "AntiAlias"_key) != "0";
    return style;
}

/// So fine are the lengths of bars: the edge that stands still is computed from the one that moves, and with these it
/// does stand still to the last bit, where the frame is as coarse.
constexpr double StepsPerPoint = 65536;

bool isOnStep(double value) {
    return value * StepsPerPoint == std::floor(value * StepsPerPoint);
}

bool isOnSteps(const Rect& rect) {
    return isOnStep(rect.x) && isOnStep(rect.y) && isOnStep(rect.width) && isOnStep(rect.height);
}

double barLength(double whole, double fraction) {
    return std::round(whole * fraction * StepsPerPoint) / StepsPerPoint;
}

/// What lies between two lengths of a bar; from 0 it is the bar.
Rect barPart(const Style& style, const Rect& rect, double fromFraction, double toFraction) {
    const double whole = style.isVertical ? rect.height : rect.width;
    const double from = barLength(whole, fromFraction);
    const double to = barLength(whole, toFraction);
    if (!style.isVertical)
        return {rect.x + from, rect.y, to - from, rect.height};
    return {rect.x, rect.y + rect.height - to, rect.width, to - from};
}

Rect transformed(const Style& style, const Rect& rect) {
    return style.transform ? toRect(style.transform->mapRect(toQRectF(rect))) : rect;
}

double fractionOf(MeasureValues values) {
    return values.empty() ? 0 : values.front().percentFraction();
}

} // namespace

struct BarMeter::State {
    const Style& style(const Options& options) {
        if (!parsed)
            parsed = parseStyle(options);
        return *parsed;
    }

    std::optional<Style> parsed;
    /// What the last draw was told to show.
    std::optional<Style> shownStyle;
    double shownFraction = 0;
    MeterFrame shownFrame;
    std::optional<Rect> changedPart;
};

BarMeter::BarMeter(const MeterDefinition& definition, Options options)
    : MeterRenderer(definition.sectionName, std::move(options))
    , state_(std::make_unique<State>()) { }

BarMeter::~BarMeter() = default;

void BarMeter::draw(QPainter& painter, MeasureValues values) {
    const auto& style = state_->style(options());
    const Rect rect = frame().rect();
    const QTransform before = style.transform ? painter.worldTransform() : QTransform();
    if (style.transform)
        painter.setWorldTransform(*style.transform, true);
    if (style.solidColor)
        fillRect(painter, rect, *style.solidColor, style.antiAlias);
    fillRect(painter, barPart(style, rect, 0, fractionOf(values)), style.barColor, style.antiAlias);
    if (style.transform)
        painter.setWorldTransform(before);
}

bool BarMeter::updateAppearance(MeasureValues values) {
    const auto& style = state_->style(options());
    const double fraction = fractionOf(values);
    const auto shownFraction = std::exchange(state_->shownFraction, fraction);
    const bool stays = std::exchange(state_->shownFrame, frame()) == frame() && state_->shownStyle == style;
    state_->changedPart.reset();
    if (stays && shownFraction == fraction)
        return false;
    // Without smoothing a whole row of pixels can hang on the last bit of the edge that stands still.
    if (stays && (style.antiAlias || isOnSteps(frame().rect()))) {
        const auto [low, high] = std::minmax(shownFraction, fraction);
        state_->changedPart = transformed(style, barPart(style, frame().rect(), low, high));
    }
    state_->shownStyle = style;
    return true;
}

std::optional<Rect> BarMeter::changedPart() const {
    return state_->changedPart;
}

Rect BarMeter::paintRect(MeasureValues values) {
    const auto& style = state_->style(options());
    const Rect rect = frame().rect();
    return transformed(style, style.solidColor ? rect : barPart(style, rect, 0, fractionOf(values)));
}

void BarMeter::optionsDidChange() {
    state_->parsed.reset();
}

} // namespace Ostrel
