#pragma once

#include "OstrelEngine/Meters/Text/TextRuns.h"

#include <cstdint>
#include <memory>
#include <span>
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

/// A feature of OpenType by its four letters.
struct TextFeature {
    std::uint32_t tag = 0;
    std::uint32_t value = 1;

    friend bool operator==(const TextFeature&, const TextFeature&) = default;
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

/// A glyph that has no place yet. Lengths are in points.
struct ShapedGlyph {
    std::uint32_t glyph = 0;
    /// Counts the runs.
    std::uint32_t run = 0;
    /// Where its character begins in the text.
    std::uint32_t unit = 0;
    /// Its character, or several that became one, has no glyph after it.
    bool endsCluster = true;
    double advance = 0;
    double x = 0;
    double y = 0;
};

struct ShapedText {
    std::vector<TextRun> runs;
    /// From left to right as they are seen.
    std::vector<ShapedGlyph> glyphs;
};

/// Without the setting's spacing, which `isSpaced` stands for: letters show one by one.
ShapedText glyphs(std::u16string_view text, const TextSetting& setting, TextDirection direction, bool isSpaced,
    std::span<const TextFeature> features);
/// Grows the line's ink by a glyph's.
void takeInInk(TextLine& line, Typeface& typeface, const PlacedGlyph& glyph, double size);

} // namespace TextShaper

} // namespace Ostrel
