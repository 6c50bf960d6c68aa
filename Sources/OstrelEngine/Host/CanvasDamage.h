#pragma once

#include "OstrelEngine/Geometry.h"

#include <QRect>

#include <vector>

namespace Ostrel {

/// The parts of a canvas whose pixels are stale: collected in widget coordinates, taken as few rectangles of pixels.
class CanvasDamage {
public:
    void add(const Rect& rect);
    void addEverything() { everything_ = true; }
    bool isEmpty() const { return rects_.empty() && !everything_; }

    /// The damage at `scale` pixels a point, cut to a picture of `bounds`; it is empty afterwards. The rectangles do
    /// not overlap, and each holds every pixel that its parts touch, however slightly. They are good until the next
    /// call.
    const std::vector<QRect>& take(double scale, const QSize& bounds);

private:
    void merge(QRect rect);

    std::vector<Rect> rects_;
    bool everything_ = false;
    std::vector<QRect> pixels_;
};

/// The smallest whole pixels that hold `rect` at that scale, cut to `bounds`; all of `bounds` when a side is no number.
QRect pixelRect(const Rect& rect, double scale, const QSize& bounds);

} // namespace Ostrel
