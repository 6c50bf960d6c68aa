#include "OstrelEngine/Meters/Text/LineComposer.h"

#include "OstrelEngine/Meters/Painting.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Ostrel {

namespace {

/// Larger glyphs are filled as outlines, which need no place in the memory.
constexpr double LargestBitmapSize = 320;
/// An emoji has no outline.
constexpr double LargestColoredSize = 1024;

bool usesBitmaps(const GlyphSpan& span, const DeviceLine& line) {
    return line.pixelSize <= (span.typeface->hasOutlines() ? LargestBitmapSize : LargestColoredSize);
}

QPointF originOf(const PlacedGlyph& glyph, const DeviceLine& line) {
    return {line.left + glyph.x * line.scale, line.baseline + glyph.y * line.scale};
}

/// The glyphs of a span; those that are far away are not worth their arithmetic.
template <typename Use> void forEachNearGlyph(const DeviceLine& line, std::size_t first, std::size_t end, Use use) {
    for (std::size_t i = first; i < end; ++i) {
        const QPointF origin = originOf(line.line.glyphs[i], line);
        if (std::abs(origin.x()) < FarCoordinate && std::abs(origin.y()) < FarCoordinate)
            use(line.line.glyphs[i]);
    }
}

template <typename Use> void forEachSpan(const TextLine& line, Use use) {
    std::size_t first = 0;
    for (const auto& span : line.spans) {
        use(span, first);
        first = span.end;
    }
}

QRect outward(const QRectF& rect) {
    const QRectF canvas(-FarCoordinate, -FarCoordinate, 2 * FarCoordinate, 2 * FarCoordinate);
    return rect.intersected(canvas).toAlignedRect();
}

void addOutlines(QPainterPath& path, const DeviceLine& line, const GlyphSpan& span, std::size_t first) {
    path.setFillRule(Qt::WindingFill);
    forEachNearGlyph(line, first, span.end, [&](const PlacedGlyph& glyph) {
        span.typeface->addOutline(path, glyph.glyph, originOf(glyph, line), line.pixelSize);
    });
}

} // namespace

LineComposer& LineComposer::shared() {
    static LineComposer composer;
    return composer;
}

bool LineComposer::compose(const DeviceLine& line, int margin, const QColor& color) {
    collect(line);
    const QRect whole = bounds() | line.underline | line.strike;
    const QRect area
        = whole.adjusted(-margin, -margin, margin, margin) & line.clip.adjusted(-margin, -margin, margin, margin);
    if (whole.isEmpty() || area.isEmpty())
        return false;
    image_.begin(area);
    image_.setColor(qPremultiply(color.rgba()));
    if (!outlines_.isEmpty())
        fillOutlines(color, line.antiAlias);
    for (const auto& placed : bitmaps_)
        image_.blend(*placed.bitmap, placed.origin);
    image_.fill(line.underline);
    image_.fill(line.strike);
    return true;
}

QPainterPath LineComposer::outlines(const DeviceLine& line) {
    QPainterPath path;
    forEachSpan(line.line, [&](const GlyphSpan& span, std::size_t first) { addOutlines(path, line, span, first); });
    return path;
}

void LineComposer::collect(const DeviceLine& line) {
    bitmaps_.clear();
    if (!outlines_.isEmpty())
        outlines_ = QPainterPath();
    // Before any bitmap is asked for: it takes the earlier ones away.
    for (const auto& span : line.line.spans)
        if (usesBitmaps(span, line))
            span.typeface->bitmaps(line.pixelSize, line.antiAlias).makeRoom();
    forEachSpan(line.line, [&](const GlyphSpan& span, std::size_t first) {
        if (!usesBitmaps(span, line))
            return addOutlines(outlines_, line, span, first);
        auto& bitmaps = span.typeface->bitmaps(line.pixelSize, line.antiAlias);
        forEachNearGlyph(line, first, span.end, [&](const PlacedGlyph& glyph) { place(bitmaps, glyph, line); });
    });
}

void LineComposer::place(GlyphBitmaps& bitmaps, const PlacedGlyph& glyph, const DeviceLine& line) {
    const QPointF origin = originOf(glyph, line);
    const int y = static_cast<int>(std::lround(origin.y()));
    if (!line.antiAlias) {
        bitmaps_.push_back({&bitmaps.bitmap(glyph.glyph, 0), QPoint(static_cast<int>(std::lround(origin.x())), y)});
        return;
    }
    const auto quarters = static_cast<int>(std::floor(origin.x() * GlyphBitmaps::Phases + 0.5));
    const int phase = quarters & (GlyphBitmaps::Phases - 1);
    bitmaps_.push_back({&bitmaps.bitmap(glyph.glyph, phase), QPoint((quarters - phase) / GlyphBitmaps::Phases, y)});
}

QRect LineComposer::bounds() const {
    // By hand: Qt's union of rectangles would cost more than what it is for.
    int left = std::numeric_limits<int>::max();
    int top = left;
    int right = std::numeric_limits<int>::min();
    int bottom = right;
    for (const auto& [bitmap, origin] : bitmaps_) {
        left = std::min(left, origin.x() + bitmap->left);
        top = std::min(top, origin.y() + bitmap->top);
        right = std::max(right, origin.x() + bitmap->left + bitmap->width);
        bottom = std::max(bottom, origin.y() + bitmap->top + bitmap->height);
    }
    const QRect ofBitmaps = left < right ? QRect(left, top, right - left, bottom - top) : QRect();
    return outlines_.isEmpty() ? ofBitmaps : ofBitmaps | outward(outlines_.boundingRect());
}

void LineComposer::fillOutlines(const QColor& color, bool antiAlias) {
    QImage view = image_.view();
    QPainter painter(&view);
    painter.setRenderHint(QPainter::Antialiasing, antiAlias);
    painter.translate(-image_.topLeft());
    painter.fillPath(outlines_, color);
}

} // namespace Ostrel
