#pragma once

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QRect>
#include <QRectF>
#include <QTransform>

#include <cstdint>

namespace Ostrel {

/// An image of device pixels that is kept between two paints. All of them together hold at most about 256 MB: its owner
/// drops the image after use when they hold more. Main thread.
class KeptImage {
public:
    KeptImage() = default;
    ~KeptImage() { drop(); }
    KeptImage(const KeptImage&) = delete;
    KeptImage& operator=(const KeptImage&) = delete;

    QImage& image() { return image_; }
    /// The content is undefined afterwards. Null for an empty size and without memory.
    void setSize(const QSize& size);
    void drop();
    static bool areTooMany();

private:
    QImage image_;
};

/// A piece of drawing in device pixels: painted once, then copied. What a copy shows does not depend on the painter's
/// clip, unlike gradients and turned pictures that are drawn directly. Main thread.
class DevicePicture {
public:
    /// Copies what `paint(QPainter&)` draws within `area`, which is in units of the painter and cut to its device.
    /// `paint` is called only when the area, its place on the device or `revision` differ from the last call.
    template <typename Paint>
    void draw(QPainter& painter, const QRectF& area, std::uint64_t revision, const Paint& paint) {
        if (!isCurrent(painter, area, revision) && begin()) {
            QPainter inner(&kept_.image());
            inner.setTransform(key_.toDevice * QTransform::fromTranslate(-key_.pixels.x(), -key_.pixels.y()));
            paint(inner);
        }
        copyTo(painter);
    }

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

    KeptImage kept_;
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

/// Fills a rectangle to the same pixels whatever the painter's clip is; the painter's own way does not where its
/// transformation turns.
void fillExactly(QPainter& painter, const QRectF& rect, const QColor& color, bool isSmooth);

} // namespace Ostrel
