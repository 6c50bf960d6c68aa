#pragma once

#include "OstrelEngine/Meters/Full/InlineSettings.h"
#include "OstrelEngine/Meters/Full/NumberFormat.h"
#include "OstrelEngine/Meters/Text/StyledPainter.h"

#include <optional>
#include <string>

namespace Ostrel {

/// Everything that a string meter of the full dialect reads from its options.
struct FullStringOptions {
    /// Prefix, Text and Postfix; absent without a Text, which "%1" stands for where a measure is bound.
    std::optional<std::string> text;
    std::string prefix;
    std::string postfix;
    NumberFormat numbers;
    /// UPPER, LOWER or PROPER in any case; empty for none.
    std::string stringCase;

    /// Font, size in pixels and color, without the typeface.
    TextStyle style;
    StyledLook look;
    /// Radians, clockwise.
    double angle = 0;
    bool keepsBlanks = false;

    /// ClipString: 0, 1 or 2.
    int clip = 0;
    /// ClipStringW and ClipStringH.
    std::optional<double> largestWidth;
    std::optional<double> largestHeight;

    InlineSettings inlineSettings;

    static FullStringOptions parse(const Options& options, const FullStringOptions& previous);
    /// The room for the lines in a box with these written sizes.
    StyledLayouts::Room room(std::optional<double> width, std::optional<double> height) const;
    /// The final text, but for the inline settings of letter case.
    std::string formattedText(MeasureValues values) const;

    friend bool operator==(const FullStringOptions&, const FullStringOptions&) = default;
};

} // namespace Ostrel
