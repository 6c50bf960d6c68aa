#include "OstrelEngine/Meters/Text/TextPainter.h"

#include "OstrelEngine/Meters/DeviceSpace.h"
#include "OstrelEngine/Meters/Painting.h"
#include "OstrelEngine/Meters/Text/LineComposer.h"

#include <QPaintDevice>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace Ostrel::TextPainter {

namespace {

/// Of the font size, as the stroke that stands for an outlined text.
constexpr double OutlineWidth = 0.02;

/// The painter is in device space.
void drawLine(QPainter& painter, const DeviceLine& line, const TextAppearance& look) {
    if (look.shadow)
        drawShadow(painter, line, *look.shadow, look.color);
    if (LineComposer::shared().compose(line, 0, toQColor(look.color)))
        painter.drawImage(LineComposer::shared().image().topLeft(), LineComposer::shared().image().view());
    if (!look.outlineColor)
        return;
    painter.setRenderHint(QPainter::Antialiasing, look.antiAlias);
    painter.strokePath(LineComposer::outlines(line),
        QPen(toQColor(*look.outlineColor), line.pixelSize * OutlineWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
}

double lineOffset(const TextLine& line, double width, HorizontalAlignment alignment) {
    // A line that is too wide begins at the left edge, so that its beginning can be read.
    const double room = std::max(0.0, width - line.width);
    switch (alignment) {
    case HorizontalAlignment::left:
        return 0;
    case HorizontalAlignment::center:
        return room / 2;
    case HorizontalAlignment::right:
        return room;
    }
    return 0;
}

QRect underlineOf(const TextLine& line, const DeviceLine& device) {
    const auto& metrics = line.spans.empty() ? Typeface::Metrics() : line.spans.front().typeface->metrics();
    const int thickness = std::max(1, static_cast<int>(std::lround(metrics.underlineThickness * device.pixelSize)));
    const double middle = device.baseline + metrics.underlineOffset * device.pixelSize;
    const int left = static_cast<int>(std::lround(device.left));
    const int right = static_cast<int>(std::lround(boundedCoordinate(device.left + line.width * device.scale)));
    return QRect(left, static_cast<int>(std::lround(middle - thickness / 2.0)), std::max(0, right - left), thickness);
}

QRect sidesOf(const Rect& rect, const DeviceSpace& space, const QRect& device) {
    const int left = static_cast<int>(std::lround(boundedCoordinate(space.map(rect.minX(), 0).x())));
    const int right = static_cast<int>(std::lround(boundedCoordinate(space.map(rect.maxX(), 0).x())));
    return QRect(left, device.top(), right - left, device.height()) & device;
}

} // namespace

void drawShadow(QPainter& painter, const DeviceLine& line, const TextShadow& shadow, const Color& textColor) {
    const double deviation = std::min(shadow.blurRadius / 2 * line.scale, LargestDeviation);
    const QPoint offset(static_cast<int>(std::lround(boundedCoordinate(shadow.offsetX * line.scale))),
        static_cast<int>(std::lround(boundedCoordinate(shadow.offsetY * line.scale))));
    DeviceLine shifted = line;
    // What is hidden itself may throw a shadow that is seen.
    shifted.clip = line.clip.translated(-offset);
    if (!LineComposer::shared().compose(shifted, static_cast<int>(std::ceil(deviation * 3)) + 1, toQColor(textColor)))
        return;
    auto& image = LineComposer::shared().image();
    image.turnIntoShadow(deviation, qPremultiply(toQColor(shadow.color).rgba()));
    painter.drawImage(image.topLeft() + offset, image.view());
}

void draw(QPainter& painter, const TextLayout& layout, double fontSize, const Rect& rect, const TextAppearance& look) {
    const QRect device(0, 0, painter.device()->width(), painter.device()->height());
    const DeviceSpace space(painter);
    const double pixelSize = std::min(fontSize * space.scale(), LargestPixelSize);
    double top = rect.y;
    const auto count = layout.linesWithin(rect.height);
    for (std::size_t i = 0; i < count; ++i) {
        const auto& line = layout.lines[i];
        const QPointF origin = space.map(rect.x + lineOffset(line, rect.width, look.alignment), top + line.ascent);
        DeviceLine placed{line, origin.x(), static_cast<int>(std::lround(boundedCoordinate(origin.y()))), pixelSize,
            space.scale(), look.antiAlias, {}, device};
        if (look.isUnderlined)
            placed.underline = underlineOf(line, placed);
        if (look.clipsWideLines && line.width > rect.width)
            placed.clip = sidesOf(rect, space, device);
        drawLine(painter, placed, look);
        top += line.height();
    }
}

Rect shadowRect(const Rect& painted, const TextShadow& shadow) {
    const double reach = 3 * std::min(shadow.blurRadius / 2, LargestDeviation) + 2;
    return painted.translated(shadow.offsetX, shadow.offsetY).expanded(reach);
}

Rect paintRect(const TextLayout& layout, double fontSize, const Rect& rect, const TextAppearance& look) {
    // For hinting, for what is rounded to whole pixels, and for the underline.
    const double margin = 2 + fontSize * OutlineWidth + (look.isUnderlined ? fontSize * 0.25 : 0);
    Rect painted{rect.x, rect.y, 0, 0};
    double top = rect.y;
    const auto count = layout.linesWithin(rect.height);
    for (std::size_t i = 0; i < count; ++i) {
        const auto& line = layout.lines[i];
        const double left = rect.x + lineOffset(line, rect.width, look.alignment);
        const Rect extent{0, 0, look.isUnderlined ? line.width : 0, 0};
        painted = painted.united(line.ink.united(extent).translated(left, top + line.ascent).expanded(margin));
        top += line.height();
    }
    if (!look.shadow)
        return painted;
    return painted.united(shadowRect(painted, *look.shadow));
}

} // namespace Ostrel::TextPainter
