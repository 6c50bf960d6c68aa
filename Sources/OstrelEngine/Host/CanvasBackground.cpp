#include "OstrelEngine/Host/CanvasBackground.h"

#include "OstrelEngine/Meters/Painting.h"

#include <QPainter>

#include <array>
#include <cmath>

namespace Ostrel {

namespace {

constexpr std::int64_t SolidMode = 2;
constexpr std::int64_t NineSliceMode = 3;

struct Slice {
    QRectF source;
    QRectF destination;
};

/// Rows of a source count from the image's bottom.
std::array<Slice, 9> slices(QSizeF image, QSizeF widget, const BackgroundMargins& margins) {
    const auto [top, right, bottom, left] = margins;
    const double iw = image.width();
    const double ih = image.height();
    const double w = widget.width();
    const double h = widget.height();
    return {{
        {{0, 0, left, top}, {0, 0, left, top}},
        {{iw - right, 0, right, top}, {w - right, 0, right, top}},
        {{0, ih - bottom, left, bottom}, {0, h - bottom, left, bottom}},
        {{iw - right, ih - bottom, right, bottom}, {w - right, h - bottom, right, bottom}},
        {{left, 0, iw - left - right, top}, {left, 0, w - left - right, top}},
        {{left, ih - bottom, iw - left - right, bottom}, {left, h - bottom, w - left - right, bottom}},
        {{0, top, left, ih - top - bottom}, {0, top, left, h - top - bottom}},
        {{iw - right, top, right, ih - top - bottom}, {w - right, top, right, h - top - bottom}},
        {{left, top, iw - left - right, ih - top - bottom}, {left, top, w - left - right, h - top - bottom}},
    }};
}

bool hasArea(const QRectF& rect) {
    return rect.width() > 0 && rect.height() > 0 && std::isfinite(rect.width()) && std::isfinite(rect.height());
}

void drawNineSlice(QPainter& painter, const QImage& image, QSizeF size, const BackgroundMargins& margins) {
    for (const auto& [source, destination] : slices(image.size(), size, margins)) {
        if (!hasArea(source) || !hasArea(destination))
            continue;
        // Taken out by rows counted from the top: the image's lower edge frames the widget's upper one. Meant so, and
        // each piece stands upright.
        const QRectF rows(source.x(), image.height() - source.y() - source.height(), source.width(), source.height());
        const QRect piece = rows.intersected(image.rect()).toAlignedRect().intersected(image.rect());
        if (!piece.isEmpty())
            painter.drawImage(destination, image.copy(piece));
    }
}

} // namespace

void CanvasBackground::paint(QPainter& painter, const QRect& pixels, Size size, double scale) {
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    if (const QImage* picture = showsImage() ? &stretched(size, scale) : nullptr; picture && !picture->isNull()) {
        painter.drawImage(pixels.topLeft(), *picture, pixels);
    } else {
        const Color color = mode == SolidMode && solidColor ? *solidColor : Color{0, 0, 0, 0};
        painter.fillRect(pixels, toQColor(color));
    }
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

const QImage& CanvasBackground::stretched(Size size, double scale) {
    if (!stretched_.isNull() && stretchedSize_ == size && stretchedScale_ == scale)
        return stretched_;
    stretchedSize_ = size;
    stretchedScale_ = scale;
    stretched_ = QImage(static_cast<int>(std::ceil(size.width * scale)),
        static_cast<int>(std::ceil(size.height * scale)), QImage::Format_ARGB32_Premultiplied);
    if (stretched_.isNull())
        return stretched_;
    stretched_.fill(Qt::transparent);
    QPainter painter(&stretched_);
    painter.scale(scale, scale);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QSizeF whole(size.width, size.height);
    if (mode == NineSliceMode)
        drawNineSlice(painter, image, whole, margins);
    else
        // Meant so: outside the nine-slice, a background stands on its head.
        painter.drawImage(QRectF(QPointF(), whole), image.mirrored());
    return stretched_;
}

} // namespace Ostrel
