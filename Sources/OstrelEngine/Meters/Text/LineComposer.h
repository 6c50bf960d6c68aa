#pragma once

#include "OstrelEngine/Meters/Text/LineImage.h"
#include "OstrelEngine/Meters/Text/TextLine.h"

#include <QPainterPath>
#include <QPoint>
#include <QRect>

#include <vector>

namespace Ostrel {

/// A line at its place on the device.
struct DeviceLine {
    const TextLine& line;
    double left = 0;
    int baseline = 0;
    /// Device pixels of the font, and for each of the line's points.
    double pixelSize = 0;
    double scale = 1;
    bool antiAlias = true;
    /// Empty without an underline.
    QRect underline;
    /// Nothing is seen outside.
    QRect clip;
    /// Empty without a line through the letters.
    QRect strike = QRect();
};

/// Puts lines together, one at a time, in memory that is kept because lines follow each other by the dozen.
class LineComposer {
public:
    /// Main thread.
    static LineComposer& shared();

    /// The line in one color on transparent ground, within its clip and `margin` pixels around it. False when nothing
    /// of it is to be seen.
    bool compose(const DeviceLine& line, int margin, const QColor& color);
    /// The line composed last.
    LineImage& image() { return image_; }

    /// The outlines of all glyphs that have one.
    static QPainterPath outlines(const DeviceLine& line);

private:
    struct PlacedBitmap {
        const GlyphBitmap* bitmap = nullptr;
        QPoint origin;
    };

    void collect(const DeviceLine& line);
    void place(GlyphBitmaps& bitmaps, const PlacedGlyph& glyph, const DeviceLine& line);
    QRect bounds() const;
    void fillOutlines(const QColor& color, bool antiAlias);

    LineImage image_;
    std::vector<PlacedBitmap> bitmaps_;
    /// Of the glyphs that are too large for bitmaps.
    QPainterPath outlines_;
};

} // namespace Ostrel
