#include "OstrelEngine/Meters/Full/FullButtonMeter.h"

#include "OstrelEngine/Meters/Full/NumberFormat.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QPainter>

#include <cmath>
#include <utility>

namespace Ostrel {

namespace {

constexpr int FrameCount = 3;

} // namespace

FullButtonMeter::FullButtonMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context)
    : FullMeter(definition, std::move(options), context)
    , picture_(context, PictureSource::Kind::Frames) { }

void FullButtonMeter::readOptions() {
    const std::string name(OptionValues::unquoted(text("ButtonImage"_key)));
    picture_.setOptions(options());
    name_ = name;
}

void FullButtonMeter::takeValues(MeasureValues values) {
    if (!picture_.show(replacingPlaces(name_, values, {})))
        return;
    frames_.set(picture_.image(), FrameCount);
    contentDidChange();
}

bool FullButtonMeter::setPointerState(PointerState state) {
    if (std::exchange(state_, state) == state)
        return false;
    contentDidChange();
    return true;
}

const QImage& FullButtonMeter::shownFrame() const {
    return frames_.frame(state_ == PointerState::Pressed ? 1 : state_ == PointerState::Over ? 2 : 0);
}

bool FullButtonMeter::isSolidAt(Point point) {
    const Rect content = contentRect();
    const QImage& frame = shownFrame();
    const QPoint pixel(static_cast<int>(std::floor(boundedCoordinate(point.x - content.x))),
        static_cast<int>(std::floor(boundedCoordinate(point.y - content.y))));
    return frame.rect().contains(pixel) && qAlpha(frame.pixel(pixel)) != 0;
}

void FullButtonMeter::drawContent(QPainter& painter) {
    const QRectF target = toQRectF(contentPaintRect());
    fitted_.draw(painter, shownFrame(), target, target);
}

Rect FullButtonMeter::contentPaintRect() const {
    // The size is the frames' own, whatever is written.
    const Rect content = contentRect();
    return {content.x, content.y, frames_.size().width, frames_.size().height};
}

} // namespace Ostrel
