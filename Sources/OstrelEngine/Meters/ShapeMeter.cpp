#include "OstrelEngine/Meters/ShapeMeter.h"

#include "OstrelEngine/Meters/Painting.h"
#include "OstrelEngine/Meters/ShapeParser.h"

#include <QPainter>
#include <QPainterPath>

#include <vector>

namespace Ostrel {

namespace {

void drawPrimitive(QPainter& painter, const ShapePrimitive& shape, const MeterFrame& frame) {
    const QRectF rect = toQRectF(shape.rect.translated(frame.x, frame.y));
    painter.setBrush(shape.fillColor ? QBrush(toQColor(*shape.fillColor)) : QBrush(Qt::NoBrush));
    if (shape.isStroked()) {
        const double width = boundedCoordinate(shape.strokeWidth);
        painter.setPen(QPen(toQColor(*shape.strokeColor), width, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    } else {
        painter.setPen(Qt::NoPen);
    }
    if (shape.kind == ShapeKind::ellipse)
        painter.drawEllipse(rect);
    else if (shape.cornerRadius > 0)
        painter.drawRoundedRect(rect, shape.cornerRadius, shape.cornerRadius);
    else
        painter.drawRect(rect);
}

} // namespace

struct ShapeMeter::State {
    const std::vector<ShapePrimitive>& primitives(const Options& own) {
        if (!parsed)
            parsed = ShapeParser::parseShapes(resolvedOptions ? *resolvedOptions : own);
        return *parsed;
    }

    std::optional<Options> resolvedOptions;
    std::optional<std::vector<ShapePrimitive>> parsed;
    /// What the last draw was told to show.
    std::optional<std::vector<ShapePrimitive>> shown;
};

ShapeMeter::ShapeMeter(const MeterDefinition& definition, Options options)
    : MeterRenderer(definition.sectionName, std::move(options))
    , state_(std::make_unique<State>()) { }

ShapeMeter::~ShapeMeter() = default;

void ShapeMeter::draw(QPainter& painter, MeasureValues) {
    painter.setRenderHint(QPainter::Antialiasing, true);
    for (const auto& shape : state_->primitives(options()))
        drawPrimitive(painter, shape, frame());
}

Rect ShapeMeter::interactionRect(MeasureValues) {
    const auto bounds = ShapeParser::bounds(state_->primitives(options()));
    return bounds ? bounds->translated(frame().x, frame().y) : frame().rect();
}

bool ShapeMeter::updateAppearance(MeasureValues) {
    const auto& primitives = state_->primitives(options());
    if (state_->shown == primitives)
        return false;
    state_->shown = primitives;
    return true;
}

Rect ShapeMeter::paintRect(MeasureValues) {
    std::optional<Rect> painted;
    for (const auto& shape : state_->primitives(options())) {
        // One point more than the stroke, for what anti-aliasing spreads.
        const double margin = 1 + (shape.isStroked() ? boundedCoordinate(shape.strokeWidth) / 2 : 0);
        const Rect rect = toRect(toQRectF(shape.rect.translated(frame().x, frame().y))).expanded(margin);
        painted = painted ? painted->united(rect) : rect;
    }
    return painted.value_or(Rect());
}

Size ShapeMeter::naturalSize(MeasureValues, Size written) {
    if (written.isComplete())
        return written;
    const auto bounds = ShapeParser::bounds(ShapeParser::parseShapes(options()));
    return bounds ? written.filledFrom({bounds->maxX(), bounds->maxY()}) : written;
}

bool ShapeMeter::takesResolvedOptions() const {
    return option("DynamicVariables"_key) == "1";
}

void ShapeMeter::setResolvedOptions(Options options) {
    if (state_->resolvedOptions == options)
        return;
    state_->resolvedOptions = std::move(options);
    state_->parsed.reset();
}

void ShapeMeter::optionsDidChange() {
    state_->parsed.reset();
}

} // namespace Ostrel
