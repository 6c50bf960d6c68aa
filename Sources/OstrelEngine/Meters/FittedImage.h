#pragma once

#include <QImage>
#include <QPoint>
#include <QRectF>

class QPainter;

namespace Ostrel {

/// A picture stretched into a rectangle of the widget and cut to another. It is scaled once for a size of device
/// pixels and then drawn pixel for pixel, so that what is drawn does not depend on the painter's clip.
class FittedImage {
public:
    void draw(QPainter& painter, const QImage& image, const QRectF& destination, const QRectF& clip);

private:
    struct Key {
        qint64 image = 0;
        /// The visible part, from the whole pixel at its top left.
        QRectF target;
        /// What of the picture is there.
        QRectF source;

        friend bool operator==(const Key&, const Key&) = default;
    };

    QImage scaled_;
    Key key_;
};

} // namespace Ostrel
