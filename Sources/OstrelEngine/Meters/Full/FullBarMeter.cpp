#include "OstrelEngine/Meters/Full/FullBarMeter.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Meters/Full/DevicePicture.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace Ostrel {

void FullBarMeter::readOptions() {
    const auto before = std::tuple(color_, isVertical_, isFlipped_, size_);
    color_ = color("BarColor"_key, {0, 128, 0, 255});
    isVertical_ = !equalsIgnoringCase(OptionValues::unquoted(text("BarOrientation"_key)), "Horizontal");
    isFlipped_ = isOn("Flip"_key, false);
    size_ = {writtenWidth().value_or(0), writtenHeight().value_or(0)};
    if (before != std::tuple(color_, isVertical_, isFlipped_, size_))
        contentDidChange();
}

void FullBarMeter::takeValues(MeasureValues values) {
    const bool isBound = !values.empty() && !text("MeasureName"_key).empty();
    const double share = isBound ? values.front().percentFraction() : 0;
    const double length = std::round((isVertical_ ? size_.height : size_.width) * share);
    const double before = std::exchange(length_, length);
    if (length != before)
        contentDidChange(part(std::min(before, length), std::max(before, length)));
}

Size FullBarMeter::contentSize(std::optional<double> width, std::optional<double> height) const {
    return {width.value_or(0), height.value_or(0)};
}

Rect FullBarMeter::part(double from, double to) const {
    if (isVertical_)
        return {0, isFlipped_ ? from : size_.height - to, size_.width, to - from};
    return {isFlipped_ ? size_.width - to : from, 0, to - from, size_.height};
}

void FullBarMeter::drawContent(QPainter& painter) {
    const Rect content = contentRect();
    const Rect bar = part(0, length_);
    if (bar.isEmpty() || color_[3] == 0)
        return;
    painter.setRenderHint(QPainter::Antialiasing, isSmooth(false));
    fillExactly(painter, toQRectF(bar.translated(content.x, content.y)), toQColor(color_));
}

} // namespace Ostrel
