#include "OstrelEngine/Meters/Full/FullRotatorMeter.h"

#include "OstrelEngine/Meters/Full/NumberFormat.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QImage>
#include <QPainter>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace Ostrel {

namespace {

double fractionOf(const MeasureValue& value, double remainder) {
    if (remainder <= 0)
        return value.percentFraction();
    const double number = std::isfinite(value.numericValue) ? value.numericValue : 0;
    return std::fmod(number, remainder) / remainder;
}

} // namespace

FullRotatorMeter::FullRotatorMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context)
    : FullMeter(definition, std::move(options), context)
    , picture_(context) { }

void FullRotatorMeter::readOptions() {
    const auto bounded = [&](const CaseKey& key, double fallback) { return boundedCoordinate(number(key, fallback)); };
    Look look;
    look.name = OptionValues::unquoted(text("ImageName"_key));
    look.pivot = {bounded("OffsetX"_key, 0), bounded("OffsetY"_key, 0)};
    look.startAngle = bounded("StartAngle"_key, 0);
    look.rotationAngle = bounded("RotationAngle"_key, 2 * std::numbers::pi);
    look.remainder = integer("ValueRemainder"_key, integer("ValueReminder"_key, 0));
    const bool isOther = picture_.setOptions(options());
    if (look == look_ && !isOther)
        return;
    look_ = std::move(look);
    ++revision_;
    contentDidChange();
}

void FullRotatorMeter::takeValues(MeasureValues values) {
    const double fraction = values.empty() ? 0 : fractionOf(values.front(), look_.remainder);
    const double angle = look_.startAngle + fraction * look_.rotationAngle;
    const bool isOther = look_.name.find('%') == std::string::npos
        ? picture_.show(look_.name)
        : picture_.show(replacingPlaces(look_.name, values, {}));
    if (std::exchange(angle_, angle) == angle && !isOther)
        return;
    ++revision_;
    contentDidChange();
}

Point FullRotatorMeter::center() const {
    const Rect content = contentRect();
    return {content.x + content.width / 2, content.y + content.height / 2};
}

void FullRotatorMeter::drawContent(QPainter& painter) {
    const QImage& image = picture_.image();
    if (image.isNull())
        return;
    turned_.draw(painter, toQRectF(contentPaintRect()), revision_, [&](QPainter& inner) {
        inner.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        inner.translate(center().x, center().y);
        inner.rotate(angle_ * 180 / std::numbers::pi);
        inner.drawImage(QPointF(-look_.pivot.x, -look_.pivot.y), image);
    });
}

Rect FullRotatorMeter::contentPaintRect() const {
    const QImage& image = picture_.image();
    if (image.isNull())
        return {center().x, center().y, 0, 0};
    QTransform turn;
    turn.translate(center().x, center().y);
    turn.rotate(angle_ * 180 / std::numbers::pi);
    const QRectF own(-look_.pivot.x, -look_.pivot.y, image.width(), image.height());
    return toRect(turn.mapRect(own)).expanded(1);
}

} // namespace Ostrel
