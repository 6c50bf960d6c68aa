#include "OstrelEngine/Full/PointerHits.h"

#include "OstrelDialect/OptionValues.h"
#include "OstrelEngine/Full/FullSkin.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Ostrel {

namespace {

/// The one pixel of the skin's picture that the point is in.
class Pixel {
public:
    explicit Pixel(Point point)
        : image_(1, 1, QImage::Format_ARGB32_Premultiplied) {
        image_.fill(Qt::transparent);
        painter_.begin(&image_);
        painter_.translate(-std::floor(point.x), -std::floor(point.y));
    }

    void draw(FullMeter& meter) { meter.draw(painter_, {}); }
    bool isPainted() const { return qAlpha(image_.pixel(0, 0)) > 0; }

private:
    QImage image_;
    QPainter painter_;
};

/// The skin's own background. An image is taken to fill what it lies under.
bool hasBackgroundAt(const FullSkin& skin, Point point) {
    const Size size = skin.widgetSize();
    if (!Rect{0, 0, size.width, size.height}.contains(point))
        return false;
    constexpr int NoBackground = 1;
    constexpr int PlainBackground = 2;
    const auto text = [&](const CaseKey& key) { return skin.skinOption(key).value_or(""); };
    const int mode = OptionValues::integer(text("BackgroundMode"_key)).value_or(NoBackground);
    if (mode == PlainBackground) {
        const auto color = OptionValues::color(text("SolidColor"_key));
        return !color || (*color)[3] > 0;
    }
    return mode != NoBackground && !text("Background"_key).empty();
}

/// The part of the container, if the meter is in one.
bool isInContainer(const FullSkin& skin, const FullMeter& meter, Point point) {
    const auto name = option(meter.options(), "Container"_key);
    const auto container = name ? skin.meterTable().position(*name) : std::nullopt;
    return !container || skin.meterTable().at(*container).frame().rect().contains(point);
}

} // namespace

bool PointerHits::contains(std::size_t meter) const {
    return std::ranges::find(meters, meter) != meters.end();
}

PointerHits pointerHits(const FullSkin& skin, Point point) {
    PointerHits hits;
    hits.isSolid = hasBackgroundAt(skin, point);
    Pixel pixel(point);
    const auto& meters = skin.meterTable();
    for (std::size_t i = 0; i < meters.count(); ++i) {
        if (!skin.isMeterDrawn(i))
            continue;
        auto& meter = meters.at(i);
        if (!hits.isSolid && meter.paintRect({}).expanded(1).contains(point)) {
            pixel.draw(meter);
            hits.isSolid = pixel.isPainted();
        }
        const bool isInBox = meter.frame().rect().contains(point);
        const bool hasOwnArea = meter.mouseArea() == FullMeter::MouseArea::OwnPixels;
        const bool isText = isInBox && !meter.displayedText({}).value_or("").empty();
        const bool isUnder = hasOwnArea ? meter.isSolidAt(point) : isInBox && (isText || hits.isSolid);
        if (isUnder && isInContainer(skin, meter, point))
            hits.meters.push_back(i);
    }
    std::ranges::reverse(hits.meters);
    hits.isSolid = hits.isSolid || !hits.meters.empty();
    return hits;
}

bool isOwnPictureAt(const FullSkin& skin, std::size_t position, Point point) {
    auto& meter = skin.meterTable().at(position);
    return skin.isMeterDrawn(position) && meter.frame().rect().contains(point) && meter.isSolidAt(point)
        && isInContainer(skin, meter, point);
}

} // namespace Ostrel
