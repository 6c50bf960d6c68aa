#pragma once

#include "OstrelEngine/Meters/Painting.h"

#include <QPainter>
#include <QTransform>

namespace Ostrel {

/// Makes one unit of the painter one device pixel while it lives. The painter may be translated and scaled alike in
/// both directions.
class DeviceSpace {
public:
    explicit DeviceSpace(QPainter& painter)
        : painter_(painter)
        , toDevice_(painter.deviceTransform())
        , isChanged_(!toDevice_.isIdentity()) {
        if (!isChanged_)
            return;
        before_ = painter.worldTransform();
        painter.setWorldTransform(toDevice_.inverted() * before_);
    }
    ~DeviceSpace() {
        if (isChanged_)
            painter_.setWorldTransform(before_);
    }
    DeviceSpace(const DeviceSpace&) = delete;
    DeviceSpace& operator=(const DeviceSpace&) = delete;

    double scale() const { return toDevice_.m11(); }
    QPointF map(double x, double y) const { return toDevice_.map(QPointF(boundedCoordinate(x), boundedCoordinate(y))); }
    QRectF map(const QRectF& rect) const { return toDevice_.mapRect(rect); }

private:
    QPainter& painter_;
    QTransform toDevice_;
    QTransform before_;
    bool isChanged_;
};

} // namespace Ostrel
