#pragma once

#include <QRegion>

#include <vector>

class QImage;

namespace Ostrel {

/// The outline of a picture on a screen that cannot blend: what is more transparent than not is cut away.
class WindowShape {
public:
    const QRegion& region() const { return region_; }
    /// Follows the picture in these parts; true when the outline is another now.
    bool follow(const QImage& picture, const std::vector<QRect>& parts);

private:
    QRegion region_;
};

} // namespace Ostrel
