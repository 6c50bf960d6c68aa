#include "OstrelEngine/Host/CanvasUnderlay.h"

#include <QPainter>

namespace Ostrel {

bool CanvasUnderlay::holds(std::size_t count, const QSize& size, double scale) const {
    return count_ == count && picture_.size() == size && scale_ == scale;
}

QImage& CanvasUnderlay::begin(std::size_t count, const QSize& size, double scale) {
    if (picture_.size() != size)
        picture_ = QImage(size, QImage::Format_ARGB32_Premultiplied);
    picture_.fill(Qt::transparent);
    count_ = count;
    scale_ = scale;
    return picture_;
}

void CanvasUnderlay::drop() {
    picture_ = {};
    count_ = 0;
}

void CanvasUnderlay::copyTo(QPainter& painter, const QRect& pixels) const {
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(pixels.topLeft(), picture_, pixels);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

} // namespace Ostrel
