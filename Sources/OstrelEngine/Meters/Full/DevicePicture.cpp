#include "OstrelEngine/Meters/Full/DevicePicture.h"

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

void DevicePicture::drop() {
    bytesKept -= image_.sizeInBytes();
    image_ = QImage();
}

bool DevicePicture::isCurrent(const QPainter& painter, const QRectF& area, std::uint64_t revision) {
    Key wanted{area, {}, painter.deviceTransform(), revision};
    const QRect device(0, 0, painter.device()->width(), painter.device()->height());
    wanted.pixels = (wanted.toDevice.mapRect(area) & QRectF(device)).toAlignedRect() & device;
    if (!image_.isNull() && wanted == key_)
        return true;
    key_ = wanted;
    return false;
}

bool DevicePicture::begin() {
    if (image_.size() != key_.pixels.size()) {
        drop();
        if (key_.pixels.isEmpty())
            return false;
        image_ = QImage(key_.pixels.size(), QImage::Format_ARGB32_Premultiplied);
        bytesKept += image_.sizeInBytes();
    }
    image_.fill(Qt::transparent);
    return !image_.isNull();
}

void DevicePicture::copyTo(QPainter& painter) {
    if (image_.isNull())
        return;
    {
        const DevicePixels pixels(painter);
        painter.drawImage(key_.pixels.topLeft(), image_);
    }
    if (bytesKept > MostBytesKept)
        drop();
}

} // namespace Ostrel
