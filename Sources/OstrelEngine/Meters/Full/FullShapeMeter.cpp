#include "OstrelEngine/Meters/Full/FullShapeMeter.h"

#include "OstrelEngine/Meters/Full/DevicePicture.h"
#include "OstrelEngine/Meters/Full/ShapeElements.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

namespace Ostrel {

namespace {

/// A shape that ends less than this before a whole pixel reaches it: turning leaves such remainders.
constexpr double HardlyAnything = 1.0 / 64;

bool isWhole(double value) {
    return value == std::floor(value);
}

bool fillsWholePixels(const QPainter& painter, const QRectF& rect) {
    const QTransform& transform = painter.deviceTransform();
    if (transform.type() > QTransform::TxScale)
        return false;
    const QRectF area = transform.mapRect(rect);
    return isWhole(area.left()) && isWhole(area.top()) && isWhole(area.right()) && isWhole(area.bottom());
}

void drawElement(QPainter& painter, const ShapeElement& element, bool isSmooth) {
    painter.setRenderHint(QPainter::Antialiasing, isSmooth);
    if (element.isFilled()) {
        if (element.rectangle && fillsWholePixels(painter, *element.rectangle)) {
            painter.setRenderHint(QPainter::Antialiasing, false);
            painter.fillRect(*element.rectangle, element.fill);
            painter.setRenderHint(QPainter::Antialiasing, isSmooth);
        } else {
            painter.fillPath(element.area, element.fill);
        }
    }
    if (element.isStroked())
        painter.fillPath(element.stroke, element.strokeFill);
}

void drawElements(QPainter& painter, const std::vector<ShapeElement>& elements, const QPointF& at, bool isSmooth) {
    painter.translate(at);
    for (const auto& element : elements)
        drawElement(painter, element, isSmooth);
    painter.translate(-at);
}

std::optional<QRectF> boundsOf(const std::vector<ShapeElement>& elements) {
    std::optional<QRectF> bounds;
    for (const auto& element : elements)
        bounds = bounds ? bounds->united(element.bounds) : element.bounds;
    return bounds;
}

/// Where two lists look different.
std::optional<QRectF> difference(const std::vector<ShapeElement>& a, const std::vector<ShapeElement>& b) {
    std::optional<QRectF> result;
    const auto add
        = [&](const ShapeElement& element) { result = result ? result->united(element.bounds) : element.bounds; };
    for (std::size_t i = 0; i < std::max(a.size(), b.size()); ++i) {
        if (i < a.size() && i < b.size() && a[i] == b[i])
            continue;
        if (i < a.size())
            add(a[i]);
        if (i < b.size())
            add(b[i]);
    }
    return result;
}

} // namespace

struct FullShapeMeter::State {
    std::vector<ShapeElement> elements;
    std::optional<QRectF> bounds;
    bool hasGradient = false;
    DevicePicture picture;
    std::uint64_t revision = 0;
};

FullShapeMeter::FullShapeMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context)
    : FullMeter(definition, std::move(options), context)
    , state_(std::make_unique<State>()) { }

FullShapeMeter::~FullShapeMeter() = default;

void FullShapeMeter::readOptions() {
    auto elements = readShapeElements(options());
    const auto changed = difference(state_->elements, elements);
    if (!changed)
        return;
    contentDidChange(toRect(*changed).expanded(1));
    state_->elements = std::move(elements);
    state_->bounds = boundsOf(state_->elements);
    state_->hasGradient = std::ranges::any_of(state_->elements, &ShapeElement::hasGradient);
    ++state_->revision;
}

Size FullShapeMeter::contentSize(std::optional<double> width, std::optional<double> height) const {
    const QRectF bounds = state_->bounds.value_or(QRectF());
    const auto reach = [](double end) { return std::max(0.0, std::floor(end + HardlyAnything)); };
    return {width.value_or(reach(bounds.right())), height.value_or(reach(bounds.bottom()))};
}

Rect FullShapeMeter::contentPaintRect() const {
    if (!state_->bounds)
        return {};
    const Rect content = contentRect();
    return toRect(toQRectF(toRect(*state_->bounds).expanded(1).translated(content.x, content.y)));
}

void FullShapeMeter::drawContent(QPainter& painter) {
    const QPointF at = toQRectF(contentRect()).topLeft();
    if (!state_->hasGradient) {
        drawElements(painter, state_->elements, at, isSmooth(true));
        return;
    }
    state_->picture.draw(painter, toQRectF(contentPaintRect()), state_->revision,
        [&](QPainter& inner) { drawElements(inner, state_->elements, at, isSmooth(true)); });
}

bool FullShapeMeter::isSolidAt(Point point) {
    const Rect content = contentRect();
    const QPointF pixel(std::floor(point.x - content.x), std::floor(point.y - content.y));
    const QRectF pixelRect(pixel, QSizeF(1, 1));
    QImage one(1, 1, QImage::Format_ARGB32_Premultiplied);
    one.fill(Qt::transparent);
    {
        QPainter painter(&one);
        painter.translate(-pixel);
        for (const auto& element : state_->elements)
            if (element.bounds.adjusted(-1, -1, 1, 1).intersects(pixelRect))
                drawElement(painter, element, isSmooth(true));
    }
    return qAlpha(one.pixel(0, 0)) != 0;
}

} // namespace Ostrel
