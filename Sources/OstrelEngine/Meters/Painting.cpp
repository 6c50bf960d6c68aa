#include "OstrelEngine/Meters/Painting.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Ostrel {

namespace {

bool isWhole(double value) {
    return value == std::round(value);
}

bool fillsWholePixels(const QTransform& toDevice, const QRectF& rect) {
    if (toDevice.type() > QTransform::TxScale)
        return false;
    const QRectF area = toDevice.mapRect(rect);
    return isWhole(area.left()) && isWhole(area.top()) && isWhole(area.right()) && isWhole(area.bottom());
}

} // namespace

double boundedCoordinate(double value) {
    return std::isnan(value) ? 0 : std::clamp(value, -FarCoordinate, FarCoordinate);
}

QRectF toQRectF(const Rect& rect) {
    return QRectF(QPointF(boundedCoordinate(rect.minX()), boundedCoordinate(rect.minY())),
        QPointF(boundedCoordinate(rect.maxX()), boundedCoordinate(rect.maxY())));
}

Rect toRect(const QRectF& rect) {
    return {rect.x(), rect.y(), rect.width(), rect.height()};
}

QColor toQColor(const Color& color) {
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
        static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

void fillRect(QPainter& painter, const Rect& rect, const Color& color, bool antiAlias) {
    const QRectF area = toQRectF(rect);
    if (area.isEmpty())
        return;
    // Filling whole pixels is several times faster where nothing is to be smoothed.
    painter.setRenderHint(QPainter::Antialiasing, antiAlias && !fillsWholePixels(painter.deviceTransform(), area));
    painter.fillRect(area, toQColor(color));
}

} // namespace Ostrel
