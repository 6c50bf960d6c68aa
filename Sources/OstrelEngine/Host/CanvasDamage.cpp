#include "OstrelEngine/Host/CanvasDamage.h"

#include <algorithm>
#include <cmath>

namespace Ostrel {

namespace {

// More rectangles than this cost more to keep apart than to repaint between.
constexpr std::size_t MostRects = 128;
// A rectangle of its own costs about as much to paint and send as this many pixels more in another.
constexpr long long PixelsPerRect = 400;

long long area(const QRect& rect) {
    return static_cast<long long>(rect.width()) * rect.height();
}

bool belongTogether(const QRect& a, const QRect& b) {
    return a.intersects(b) || area(a.united(b)) <= area(a) + area(b) + PixelsPerRect;
}

} // namespace

QRect pixelRect(const Rect& rect, double scale, const QSize& bounds) {
    const double left = rect.minX() * scale;
    const double top = rect.minY() * scale;
    const double right = rect.maxX() * scale;
    const double bottom = rect.maxY() * scale;
    if (std::isnan(left + right) || std::isnan(top + bottom))
        return {QPoint(0, 0), bounds};
    // Cut before the conversion, for a skin's sizes need not fit an integer.
    const auto cut = [](double edge, int most) { return static_cast<int>(std::clamp<double>(edge, 0, most)); };
    const QPoint topLeft(cut(std::floor(left), bounds.width()), cut(std::floor(top), bounds.height()));
    const QPoint end(cut(std::ceil(right), bounds.width()), cut(std::ceil(bottom), bounds.height()));
    return {topLeft, QSize(end.x() - topLeft.x(), end.y() - topLeft.y())};
}

void CanvasDamage::add(const Rect& rect) {
    if (!everything_)
        rects_.push_back(rect);
}

const std::vector<QRect>& CanvasDamage::take(double scale, const QSize& bounds) {
    pixels_.clear();
    if (everything_)
        pixels_.push_back({QPoint(0, 0), bounds});
    else
        for (const auto& rect : rects_)
            if (const auto pixels = pixelRect(rect, scale, bounds); !pixels.isEmpty())
                merge(pixels);
    rects_.clear();
    everything_ = false;
    return pixels_;
}

void CanvasDamage::merge(QRect rect) {
    for (std::size_t i = 0; i < pixels_.size();) {
        if (pixels_.size() < MostRects && !belongTogether(pixels_[i], rect)) {
            ++i;
            continue;
        }
        rect = rect.united(pixels_[i]);
        pixels_[i] = pixels_.back();
        pixels_.pop_back();
        // What has grown may now reach one that it missed.
        i = 0;
    }
    pixels_.push_back(rect);
}

} // namespace Ostrel
