#include "OstrelEngine/Meters/Full/PictureDrawing.h"

#include "OstrelDialect/OptionValues.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QBrush>
#include <QImage>
#include <QPaintDevice>
#include <QPainter>
#include <QRectF>

#include <algorithm>
#include <array>
#include <cmath>

namespace Ostrel {

namespace {

/// Averaged where several pixels become one; sampling alone would drop some.
QImage averaged(const QImage& picture, const QSizeF& devicePixels) {
    const int width = std::max(1, static_cast<int>(std::lround(devicePixels.width())));
    const int height = std::max(1, static_cast<int>(std::lround(devicePixels.height())));
    if (width >= picture.width() && height >= picture.height())
        return picture;
    return picture.scaled(std::min(width, picture.width()), std::min(height, picture.height()), Qt::IgnoreAspectRatio,
        Qt::SmoothTransformation);
}

QImage layer(const QPainter& painter, const QImage& picture, const QRectF& rect) {
    QImage result(painter.device()->width(), painter.device()->height(), QImage::Format_ARGB32_Premultiplied);
    result.fill(Qt::transparent);
    QPainter inner(&result);
    inner.setTransform(painter.worldTransform());
    inner.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    inner.drawImage(rect, averaged(picture, painter.worldTransform().mapRect(rect).size()));
    return result;
}

/// The edges of the three pieces of one direction.
std::array<double, 4> edges(double begin, double length, double first, double last) {
    // Where the margins leave nothing between them they share what there is.
    const double shrink = first + last > length ? length / (first + last) : 1;
    return {begin, begin + first * shrink, begin + length - last * shrink, begin + length};
}

} // namespace

PictureMargins PictureMargins::parse(std::string_view text) {
    const auto numbers = OptionValues::numbers(text, ',');
    const auto at = [&](std::size_t i) {
        return i < numbers.size() ? std::max(0.0, std::trunc(boundedCoordinate(numbers[i].value_or(0)))) : 0;
    };
    return {at(0), at(1), at(2), at(3)};
}

namespace PictureDrawing {

Rect placed(const QImage& picture, const Rect& rect, PictureFit fit) {
    if (fit == PictureFit::Stretch || picture.isNull() || rect.isEmpty())
        return rect;
    const double aspect = static_cast<double>(picture.width()) / picture.height();
    const bool isNarrower = rect.width / rect.height < aspect;
    const bool takesHeight = isNarrower == (fit == PictureFit::Fill);
    const double width = takesHeight ? rect.height * aspect : rect.width;
    const double height = takesHeight ? rect.height : rect.width / aspect;
    return {rect.x + (rect.width - width) / 2, rect.y + (rect.height - height) / 2, width, height};
}

void drawInPieces(QPainter& painter, const QImage& picture, const QRectF& rect, PictureMargins margins) {
    if (picture.isNull() || rect.isEmpty())
        return;
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    margins.left = std::min<double>(margins.left, picture.width());
    margins.right = std::min<double>(margins.right, picture.width() - margins.left);
    margins.top = std::min<double>(margins.top, picture.height());
    margins.bottom = std::min<double>(margins.bottom, picture.height() - margins.top);
    const auto fromX = edges(0, picture.width(), margins.left, margins.right);
    const auto fromY = edges(0, picture.height(), margins.top, margins.bottom);
    const auto toX = edges(rect.x(), rect.width(), margins.left, margins.right);
    const auto toY = edges(rect.y(), rect.height(), margins.top, margins.bottom);
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            const QRect from(QPoint(static_cast<int>(fromX[column]), static_cast<int>(fromY[row])),
                QPoint(static_cast<int>(fromX[column + 1]) - 1, static_cast<int>(fromY[row + 1]) - 1));
            const QRectF to(QPointF(toX[column], toY[row]), QPointF(toX[column + 1], toY[row + 1]));
            // A copy, or smoothing would take in what lies beside the piece.
            if (!from.isEmpty() && !to.isEmpty())
                painter.drawImage(to, picture.copy(from));
        }
    }
}

void drawTiled(QPainter& painter, const QImage& picture, const QRectF& rect) {
    if (picture.isNull())
        return;
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setBrushOrigin(rect.topLeft());
    painter.fillRect(rect, QBrush(picture));
}

void drawMasked(QPainter& painter, const QImage& picture, const QImage& mask, const Rect& rect) {
    if (picture.isNull() || mask.isNull())
        return;
    QImage result = layer(painter, picture, toQRectF(placed(picture, rect, PictureFit::Fill)));
    const QImage cover = layer(painter, mask, toQRectF(rect));
    for (int y = 0; y < result.height(); ++y) {
        auto* pixels = reinterpret_cast<QRgb*>(result.scanLine(y));
        const auto* covers = reinterpret_cast<const QRgb*>(cover.constScanLine(y));
        for (int x = 0; x < result.width(); ++x) {
            const int own = qAlpha(pixels[x]);
            const int least = std::min(own, qAlpha(covers[x]));
            if (least == own)
                continue;
            const auto scaled = [&](int channel) { return (channel * least + own / 2) / own; };
            pixels[x] = qRgba(scaled(qRed(pixels[x])), scaled(qGreen(pixels[x])), scaled(qBlue(pixels[x])), least);
        }
    }
    painter.resetTransform();
    painter.drawImage(0, 0, result);
}

} // namespace PictureDrawing

} // namespace Ostrel
