#pragma once

#include "OstrelEngine/Geometry.h"
#include "OstrelEngine/Meters/Text/TextLine.h"
#include "OstrelEngine/Meters/Text/TextPainter.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// Colors along a line over a box.
struct TextGradient {
    struct Stop {
        double position = 0;
        Color color;

        friend bool operator==(const Stop&, const Stop&) = default;
    };
    /// Degrees, clockwise from the right: where the first color is.
    double angle = 0;
    /// By position; two at least.
    std::vector<Stop> stops;
    /// Mixed in linear light.
    bool isLinear = false;

    friend bool operator==(const TextGradient&, const TextGradient&) = default;
};

/// How a stretch of a text is set and what it looks like. Lengths are in points.
struct TextStyle {
    FontLookup::FamilyRequest family;
    std::shared_ptr<Typeface> typeface;
    double size = 12;
    /// Before and behind each character.
    double leading = 0;
    double trailing = 0;
    double leastAdvance = 0;
    std::vector<TextFeature> features;

    Color color;
    bool isUnderlined = false;
    bool isStruckThrough = false;
    std::optional<TextShadow> shadow;
    std::shared_ptr<const TextGradient> gradient;
    /// Stretches with the same gradient and number share its box.
    std::uint32_t gradientSpan = 0;

    bool setsAlike(const TextStyle& other) const;
    bool isSpaced() const { return leading != 0 || trailing != 0 || leastAdvance != 0; }
    friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

/// Text in stretches of styles, which are never none. The first style sets empty lines.
struct StyledText {
    struct Stretch {
        /// From the end of the stretch before.
        std::size_t end = 0;
        std::size_t style = 0;

        friend bool operator==(const Stretch&, const Stretch&) = default;
    };
    std::u16string text;
    std::vector<TextStyle> styles;
    std::vector<Stretch> stretches;

    std::size_t styleAt(std::size_t unit) const;
    friend bool operator==(const StyledText&, const StyledText&) = default;
};

/// A line of text in pieces of one style each, from left to right. Glyphs count from the line's left end.
struct StyledLine {
    struct Piece {
        TextLine line;
        std::size_t style = 0;
        double left = 0;
        double right = 0;
    };
    std::vector<Piece> pieces;
    double width = 0;
    double ascent = 0;
    double descent = 0;

    double height() const { return ascent + descent; }
};

struct StyledLayout {
    std::vector<StyledLine> lines;
    double width = 0;
    double height = 0;
};

namespace StyledLayouts {

/// How much room a text has. A direction that is absent has no end.
struct Room {
    std::optional<double> width;
    std::optional<double> height;
    /// Lines at most, whatever the height.
    std::optional<std::size_t> lines;
    enum class Breaking {
        /// One line for each of the text's own.
        Never,
        /// Between words, within one only where it is wider than a line.
        Words,
        /// At blanks; a wider word sticks out.
        Blanks,
    } breaking
        = Breaking::Never;
    /// Blanks at the ends of lines count as width.
    bool keepsBlanks = false;

    friend bool operator==(const Room&, const Room&) = default;
};

/// The lines that have room, one at least; where text is left over the last ends with an ellipsis. Every style has a
/// typeface.
StyledLayout layout(const StyledText& text, const Room& room);

} // namespace StyledLayouts

} // namespace Ostrel
