#pragma once

#include <QImage>
#include <QPainter>
#include <QRect>
#include <QRectF>
#include <QTransform>

#include <cstdint>

namespace Ostrel {

/// A piece of drawing in device pixels: painted once, then copied. What a copy shows does not depend on the painter's
/// clip, which gradients and turned pictures do. All of them together keep at most 256 MB; what does not fit is painted
/// at each draw. Main thread.
class DevicePicture {
public:
    DevicePicture() = default;
    ~DevicePicture() { drop(); }
    DevicePicture(const DevicePicture&) = delete;
    DevicePicture& operator=(const DevicePicture&) = delete;

    /// Copies what `paint(QPainter&)` draws within `area`, which is in units of the painter and cut to its device.
    /// `paint` is called only when the area, its place on the device or `revision` differ from the last call.
    template <typename Paint>
    void draw(QPainter& painter, const QRectF& area, std::uint64_t revision, const Paint& paint) {
        if (!isCurrent(painter, area, revision) && begin()) {
            QPainter inner(&image_);
            inner.setTransform(key_.toDevice * QTransform::fromTranslate(-key_.pixels.x(), -key_.pixels.y()));
            paint(inner);
        }
        copyTo(painter);
    }
    void drop();

private:
    struct Key {
        QRectF area;
        QRect pixels;
        QTransform toDevice;
        std::uint64_t revision = 0;

        friend bool operator==(const Key&, const Key&) = default;
    };

    /// Notes what is wanted.
    bool isCurrent(const QPainter& painter, const QRectF& area, std::uint64_t revision);
    /// An empty image of the size that is wanted; false when nothing is visible.
    bool begin();
    void copyTo(QPainter& painter);

    QImage image_;
    Key key_;
};

/// Gives the painter the coordinates of its device's pixels while it lives, whatever its transformation is.
class DevicePixels {
public:
    explicit DevicePixels(QPainter& painter);
    ~DevicePixels() { painter_.setWorldTransform(before_); }
    DevicePixels(const DevicePixels&) = delete;
    DevicePixels& operator=(const DevicePixels&) = delete;

private:
    QPainter& painter_;
    QTransform before_;
};

} // namespace Ostrel
