#include "OstrelEngine/Meters/Full/FullBarMeter.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Meters/Full/DevicePicture.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Ostrel {

FullBarMeter::FullBarMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context)
    : FullMeter(definition, std::move(options), context)
    , picture_(context) { }

void FullBarMeter::readOptions() {
    Look look;
    look.color = color("BarColor"_key, {0, 128, 0, 255});
    look.isVertical = !equalsIgnoringCase(OptionValues::unquoted(text("BarOrientation"_key)), "Horizontal");
    look.isFlipped = isOn("Flip"_key, false);
    look.border = std::max(0, integer("BarBorder"_key, 0));
    look.pictureName = OptionValues::unquoted(text("BarImage"_key));
    const bool isOtherPicture = picture_.setOptions(options());
    if (look == look_ && !isOtherPicture)
        return;
    look_ = std::move(look);
    contentDidChange();
}

void FullBarMeter::takeValues(MeasureValues values) {
    if (picture_.show(look_.pictureName))
        contentDidChange();
    const Size size
        = hasPicture() ? contentSize({}, {}) : Size{writtenWidth().value_or(0), writtenHeight().value_or(0)};
    if (std::exchange(size_, size) != size)
        contentDidChange();
    const bool isBound = !values.empty() && !text("MeasureName"_key).empty();
    const double share = isBound ? values.front().percentFraction() : 0;
    const double whole = look_.isVertical ? size.height : size.width;
    const double border = hasPicture() ? std::min(look_.border, std::floor(whole / 2)) : 0;
    const double length = border + std::round((whole - 2 * border) * share);
    const double before = std::exchange(length_, length);
    if (length != before)
        contentDidChange(part(std::min(before, length), std::max(before, length)));
}

Size FullBarMeter::contentSize(std::optional<double> width, std::optional<double> height) const {
    if (!hasPicture())
        return {width.value_or(0), height.value_or(0)};
    const QSize size = picture_.image().size();
    return {static_cast<double>(std::max(0, size.width())), static_cast<double>(std::max(0, size.height()))};
}

Rect FullBarMeter::part(double from, double to) const {
    if (look_.isVertical)
        return {0, look_.isFlipped ? from : size_.height - to, size_.width, to - from};
    return {look_.isFlipped ? size_.width - to : from, 0, to - from, size_.height};
}

void FullBarMeter::drawContent(QPainter& painter) {
    const Rect content = contentRect();
    const auto placed = [&](const Rect& rect) { return toQRectF(rect.translated(content.x, content.y)); };
    if (!hasPicture()) {
        const Rect bar = part(0, length_);
        if (bar.isEmpty() || look_.color[3] == 0)
            return;
        fillExactly(painter, placed(bar), toQColor(look_.color), isSmooth(false));
        return;
    }
    if (picture_.image().isNull())
        return;
    // The far border shows whatever the value is; what is not yet grown lies between.
    const double whole = look_.isVertical ? size_.height : size_.width;
    const double border = std::min(look_.border, std::floor(whole / 2));
    const QRectF all = placed({0, 0, size_.width, size_.height});
    for (const Rect& shown : {part(0, length_), part(whole - border, whole)}) {
        if (shown.isEmpty())
            continue;
        painter.save();
        painter.setClipRect(placed(shown), Qt::IntersectClip);
        fitted_.draw(painter, picture_.image(), all, all);
        painter.restore();
    }
}

} // namespace Ostrel
