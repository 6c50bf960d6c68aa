#pragma once

#include "OstrelEngine/Geometry.h"
#include "OstrelEngine/Meters/Text/TextLayout.h"

#include <optional>

class QPainter;

namespace Ostrel {

enum class HorizontalAlignment { left, center, right };

struct TextShadow {
    /// In points, to the right and downward.
    double offsetX = 1;
    double offsetY = 1;
    /// Twice the standard deviation of the blur, in points.
    double blurRadius = 1;
    Color color;

    friend bool operator==(const TextShadow&, const TextShadow&) = default;
};

/// What a text looks like, apart from its font.
struct TextAppearance {
    Color color;
    bool isUnderlined = false;
    bool antiAlias = true;
    HorizontalAlignment alignment = HorizontalAlignment::left;
    std::optional<TextShadow> shadow;
    /// Stroked along the outlines, over the fill.
    std::optional<Color> outlineColor;
    /// A line wider than the rectangle is cut at its sides rather than shown beyond them.
    bool clipsWideLines = false;

    friend bool operator==(const TextAppearance&, const TextAppearance&) = default;
};

struct DeviceLine;

namespace TextPainter {

/// Far beyond any screen; outlines beyond it would leave the painter's coordinates.
constexpr double LargestPixelSize = 16'384;
/// In device pixels; a shadow that is blurred more is hardly seen, and costs with its square.
constexpr double LargestDeviation = 12;

/// Draws the lines that fit into the rectangle, from its top. The painter may be translated and scaled alike in both
/// directions. Glyphs are placed to a quarter of a device pixel and lines to a whole one, so what is drawn does not
/// depend on the painter's clip.
void draw(QPainter& painter, const TextLayout& layout, double fontSize, const Rect& rect, const TextAppearance& look);
/// The shadow that a line in this color throws. The painter is in device space.
void drawShadow(QPainter& painter, const DeviceLine& line, const TextShadow& shadow, const Color& textColor);
/// Where the shadow of what is painted there may be.
Rect shadowRect(const Rect& painted, const TextShadow& shadow);
/// Holds all that `draw` may touch.
Rect paintRect(const TextLayout& layout, double fontSize, const Rect& rect, const TextAppearance& look);

} // namespace TextPainter

} // namespace Ostrel
