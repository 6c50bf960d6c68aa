#pragma once

#include "OstrelEngine/Meters/Text/TextRuns.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// A glyph and its place, from the line's left end and baseline, y downward.
struct PlacedGlyph {
    std::uint32_t glyph = 0;
    float x = 0;
    float y = 0;
};

/// Glyphs up to `end`, from where the span before ended, are of this face.
struct GlyphSpan {
    std::shared_ptr<Typeface> typeface;
    std::size_t end = 0;
};

/// A line of text, shaped. Lengths are in points.
struct TextLine {
    std::vector<PlacedGlyph> glyphs;
    std::vector<GlyphSpan> spans;
    /// Blanks at the end included.
    double width = 0;
    double ascent = 0;
    double descent = 0;
    double leading = 0;
    /// Around all ink, from the line's left end and baseline.
    Rect ink;

    double height() const { return ascent + descent + leading; }
};

/// How a text is set.
struct TextSetting {
    TextFont font;
    double size = 12;
    /// Added to the advance of every character, in points.
    double spacing = 0;
};

namespace TextShaper {

TextLine shape(std::u16string_view line, const TextSetting& setting, TextDirection direction);
/// For each unit of the text the advance of the cluster that begins there, 0 inside of one.
std::vector<double> advances(std::u16string_view text, const TextSetting& setting, TextDirection direction);

} // namespace TextShaper

} // namespace Ostrel
