#include "OstrelPlatform/Linux/X11/WindowShape.h"

#include <QImage>

#include <algorithm>

namespace Ostrel {

namespace {

/// One bit, so that many pixels can be tested at once.
constexpr unsigned LeastAlpha = 128;

/// Runs of visible pixels of one row; rows that are alike share their rectangles.
std::vector<QRect> visibleRuns(const QImage& picture, int y, int left, int right) {
    const auto* row = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
    std::vector<QRect> runs;
    for (int x = left; x <= right; ++x) {
        if ((qAlpha(row[x]) & LeastAlpha) == 0)
            continue;
        const int start = x;
        while (x <= right && (qAlpha(row[x]) & LeastAlpha) != 0)
            ++x;
        runs.push_back({start, y, x - start, 1});
    }
    return runs;
}

bool sameColumns(const std::vector<QRect>& a, const std::vector<QRect>& b) {
    return std::ranges::equal(
        a, b, [](const QRect& x, const QRect& y) { return x.left() == y.left() && x.right() == y.right(); });
}

QRegion visibleRegion(const QImage& picture, const QRect& part) {
    // In the order that a region keeps its rectangles in, so that it takes them as they are.
    std::vector<QRect> rects;
    std::vector<QRect> band;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        auto runs = visibleRuns(picture, y, part.left(), part.right());
        if (!band.empty() && sameColumns(band, runs)) {
            for (auto& rect : band)
                rect.setBottom(y);
            continue;
        }
        rects.insert(rects.end(), band.begin(), band.end());
        band = std::move(runs);
    }
    rects.insert(rects.end(), band.begin(), band.end());
    QRegion region;
    region.setRects(rects.data(), static_cast<int>(rects.size()));
    return region;
}

bool isAllVisible(const QImage& picture, const QRect& part) {
    for (int y = part.top(); y <= part.bottom(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        QRgb common = ~QRgb{0};
        for (int x = part.left(); x <= part.right(); ++x)
            common &= row[x];
        // The highest bit that all of a row share tells whether any is below the half.
        if ((common >> 24 & LeastAlpha) == 0)
            return false;
    }
    return true;
}

/// In one of its rectangles, which is where a widget's inside is.
bool holds(const QRegion& region, const QRect& part) {
    return std::any_of(region.begin(), region.end(), [&](const QRect& rect) { return rect.contains(part); });
}

} // namespace

bool WindowShape::follow(const QImage& picture, const std::vector<QRect>& parts) {
    QRegion now = region_.intersected(picture.rect());
    for (const QRect& part : parts) {
        const QRect inside = part.intersected(picture.rect());
        if (holds(now, inside) && isAllVisible(picture, inside))
            continue;
        now = now.subtracted(inside).united(visibleRegion(picture, inside));
    }
    if (now.xored(region_).isEmpty())
        return false;
    region_ = now;
    return true;
}

} // namespace Ostrel
