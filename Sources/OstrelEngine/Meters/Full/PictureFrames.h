#pragma once

#include "OstrelEngine/Geometry.h"
#include "OstrelEngine/Meters/FittedImage.h"

#include <QImage>

#include <vector>

class QPainter;

namespace Ostrel {

/// A picture of equal frames: side by side where it is wider than high, else on top of each other. With more frames
/// than pixels there are none.
class PictureFrames {
public:
    void set(const QImage& picture, int count);

    int count() const { return static_cast<int>(frames_.size()); }
    /// Of one frame; empty without a picture.
    Size size() const { return size_; }
    /// Null for a frame that does not exist.
    const QImage& frame(int index) const;

private:
    /// Parts of the picture, cut out when they are first shown.
    mutable std::vector<QImage> frames_;
    QImage picture_;
    Size size_;
};

} // namespace Ostrel
