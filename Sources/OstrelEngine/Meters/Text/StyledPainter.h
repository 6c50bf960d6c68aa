#pragma once

#include "OstrelEngine/Geometry.h"
#include "OstrelEngine/Meters/Text/StyledText.h"

class QPainter;

namespace Ostrel {

enum class VerticalAlignment { top, center, bottom };

/// What a styled text looks like as a whole.
struct StyledLook {
    HorizontalAlignment alignment = HorizontalAlignment::left;
    VerticalAlignment verticalAlignment = VerticalAlignment::top;
    bool antiAlias = true;
    enum class Effect { None, Shadow, Border } effect = Effect::None;
    Color effectColor;
    /// A line wider than the rectangle is cut at its sides rather than shown beyond them.
    bool cutsWideLines = false;

    friend bool operator==(const StyledLook&, const StyledLook&) = default;
};

namespace StyledPainter {

/// Draws all lines, aligned in the rectangle. The painter may be translated and scaled alike in both directions; what
/// is drawn does not depend on its clip.
void draw(
    QPainter& painter, const StyledText& text, const StyledLayout& layout, const Rect& rect, const StyledLook& look);
/// The same as outlines, for a painter with any transformation: shadows are not blurred, pictures in fonts not drawn.
void drawOutlines(
    QPainter& painter, const StyledText& text, const StyledLayout& layout, const Rect& rect, const StyledLook& look);
/// Holds all that `draw` and `drawOutlines` may touch.
Rect paintRect(const StyledText& text, const StyledLayout& layout, const Rect& rect, const StyledLook& look);

} // namespace StyledPainter

} // namespace Ostrel
