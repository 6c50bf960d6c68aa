#include "OstrelEngine/Meters/FittedImage.h"

#include "OstrelEngine/Meters/DeviceSpace.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Ostrel {

namespace {

/// Above it a picture is not averaged down as a whole first.
constexpr double MostPixelsAveraged = 16'000'000;

/// The part of the picture that lands in `target` when the whole fills `destination`.
QRectF sourceOf(const QRectF& target, const QRectF& destination, const QSizeF& image) {
    const double perX = image.width() / destination.width();
    const double perY = image.height() / destination.height();
    return QRectF((target.x() - destination.x()) * perX, (target.y() - destination.y()) * perY, target.width() * perX,
        target.height() * perY);
}

/// Averages where several pixels become one; sampling alone would drop some.
QImage averagedDown(const QImage& image, const QSizeF& size) {
    const int width = std::max(1, static_cast<int>(std::lround(size.width())));
    const int height = std::max(1, static_cast<int>(std::lround(size.height())));
    if (width >= image.width() && height >= image.height())
        return image;
    return image.scaled(std::min(width, image.width()), std::min(height, image.height()), Qt::IgnoreAspectRatio,
        Qt::SmoothTransformation);
}

QImage render(const QImage& image, const QRectF& target, const QRectF& source, const QSizeF& destination) {
    const bool isSmall = destination.width() * destination.height() <= MostPixelsAveraged;
    const QImage picture = isSmall ? averagedDown(image, destination) : image;
    const double perX = static_cast<double>(picture.width()) / image.width();
    const double perY = static_cast<double>(picture.height()) / image.height();
    QImage result(target.toAlignedRect().size(), QImage::Format_ARGB32_Premultiplied);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.drawImage(
        target, picture, QRectF(source.x() * perX, source.y() * perY, source.width() * perX, source.height() * perY));
    return result;
}

} // namespace

void FittedImage::draw(QPainter& painter, const QImage& image, const QRectF& destination, const QRectF& clip) {
    const QRectF device(0, 0, painter.device()->width(), painter.device()->height());
    const DeviceSpace space(painter);
    const QRectF whole = space.map(destination);
    const QRectF visible = whole & space.map(clip) & device;
    if (visible.isEmpty() || image.isNull())
        return;
    const QPoint corner(static_cast<int>(std::floor(visible.x())), static_cast<int>(std::floor(visible.y())));
    const Key key{image.cacheKey(), visible.translated(-corner), sourceOf(visible, whole, image.size())};
    if (scaled_.isNull() || key != key_)
        scaled_ = render(image, key.target, key.source, whole.size());
    key_ = key;
    painter.drawImage(corner, scaled_);
}

} // namespace Ostrel
