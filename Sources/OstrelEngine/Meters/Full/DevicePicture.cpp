#include "OstrelEngine/Meters/Full/DevicePicture.h"

#include <QPainterPath>

namespace Ostrel {

namespace {

constexpr qsizetype MostBytesKept = 256 * 1024 * 1024;
qsizetype bytesKept = 0;

} // namespace

DevicePixels::DevicePixels(QPainter& painter)
    : painter_(painter)
    , before_(painter.worldTransform()) {
    painter.setWorldTransform(QTransform());
    // What remains is the device's own ratio, which always has an inverse.
    painter.setWorldTransform(painter.deviceTransform().inverted());
}

void KeptImage::setSize(const QSize& size) {
    if (image_.size() == size)
        return;
    drop();
    if (size.isEmpty())
        return;
    image_ = QImage(size, QImage::Format_ARGB32_Premultiplied);
    bytesKept += image_.sizeInBytes();
}

void KeptImage::drop() {
    bytesKept -= image_.sizeInBytes();
    image_ = QImage();
}

bool KeptImage::areTooMany() {
    return bytesKept > MostBytesKept;
}

bool DevicePicture::isCurrent(const QPainter& painter, const QRectF& area, std::uint64_t revision) {
    Key wanted{area, {}, painter.deviceTransform(), revision};
    const QRect device(0, 0, painter.device()->width(), painter.device()->height());
    wanted.pixels = (wanted.toDevice.mapRect(area) & QRectF(device)).toAlignedRect() & device;
    if (!kept_.image().isNull() && wanted == key_)
        return true;
    key_ = wanted;
    return false;
}

bool DevicePicture::begin() {
    kept_.setSize(key_.pixels.size());
    if (kept_.image().isNull())
        return false;
    kept_.image().fill(Qt::transparent);
    return true;
}

void DevicePicture::copyTo(QPainter& painter) {
    if (kept_.image().isNull())
        return;
    {
        const DevicePixels pixels(painter);
        painter.drawImage(key_.pixels.topLeft(), kept_.image());
    }
    if (KeptImage::areTooMany())
        kept_.drop();
}

void fillExactly(QPainter& painter, const QRectF& rect, const QColor& color, bool isSmooth) {
    if (painter.testRenderHint(QPainter::Antialiasing) != isSmooth)
        painter.setRenderHint(QPainter::Antialiasing, isSmooth);
    if (painter.worldTransform().type() <= QTransform::TxScale) {
        painter.fillRect(rect, color);
        return;
    }
    QPainterPath path(rect.topLeft());
    path.lineTo(rect.topRight());
    path.lineTo(rect.bottomRight());
    path.lineTo(rect.bottomLeft());
    path.closeSubpath();
    painter.fillPath(path, color);
}

} // namespace Ostrel
