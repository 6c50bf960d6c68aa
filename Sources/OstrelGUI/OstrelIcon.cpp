#include "OstrelGUI/OstrelIcon.h"

#include <QImage>
#include <QLinearGradient>
#include <QPainter>

namespace Ostrel::OstrelIcon {

namespace {

// In a square of 64.
constexpr double Side = 64;
const QRectF Plate(4, 4, 56, 56);
constexpr double PlateRadius = 14;
const QRectF Gauge(16, 16, 32, 32);
constexpr double GaugeWidth = 6;
constexpr double HubRadius = 5;

// As Qt counts them: sixteenths of a degree, against the clock from three o'clock.
constexpr int Start = 225 * 16;
constexpr int Whole = -270 * 16;
constexpr int Shown = -180 * 16;

} // namespace

QImage draw(int pixels) {
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixels / Side, pixels / Side);

    QLinearGradient light(0, Plate.top(), 0, Plate.bottom());
    light.setColorAt(0, QColor(0x4c, 0x6e, 0xf5));
    light.setColorAt(1, QColor(0x2b, 0x3a, 0x9e));
    painter.setPen(Qt::NoPen);
    painter.setBrush(light);
    painter.drawRoundedRect(Plate, PlateRadius, PlateRadius);

    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(255, 255, 255, 82), GaugeWidth, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(Gauge, Start, Whole);
    painter.setPen(QPen(Qt::white, GaugeWidth, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(Gauge, Start, Shown);

    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xff, 0xd4, 0x3b));
    painter.drawEllipse(Gauge.center(), HubRadius, HubRadius);
    return image;
}

} // namespace Ostrel::OstrelIcon
