#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelEngine/Meters/Text/FontLookup.h"
#include "OstrelEngine/Meters/Text/TextPainter.h"
#include "OstrelEngine/Meters/TextFormatter.h"

#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

/// Everything that a string meter reads from its options.
struct StringOptions {
    /// Absent means "%1" for what is shown, and nothing for what is measured.
    std::optional<std::string> textTemplate;
    TextFormatter::NumberStyle numbers;
    std::optional<std::string> stringCase;

    FontLookup::Request font;
    /// Points.
    double fontSize = 12;
    /// Added to the advance of every character.
    double kerning = 0;

    TextAppearance look;
    std::optional<Color> solidColor;
    /// ClipString is not 0.
    bool clips = false;
    /// W and H; 0 when they are not given.
    double width = 0;
    double height = 0;

    bool hasWidth() const { return width > 0; }
    bool hasHeight() const { return height > 0; }

    static StringOptions parse(const Options& options);

    friend bool operator==(const StringOptions&, const StringOptions&) = default;
};

namespace StringOptionParsers {

HorizontalAlignment alignment(std::optional<std::string_view> text);
/// From FontWeight, a number or a word, else from the words in StringStyle.
FontLookup::Weight fontWeight(std::optional<std::string_view> fontWeight, std::string_view stringStyle);
/// From "CharacterSpacing | before | after"; absent for any other setting and for a spacing of nothing.
std::optional<double> characterSpacingKerning(std::string_view setting);

} // namespace StringOptionParsers

} // namespace Ostrel
