#pragma once

#include "OstrelEngine/Meters/Text/TextLine.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// A text set in lines, from the top. Where a line begins in its rectangle is the painter's business.
struct TextLayout {
    std::vector<TextLine> lines;

    double width() const;
    double height() const;
    /// The leading lines that fit into the height; the first always does.
    std::size_t linesWithin(double height) const;
};

namespace TextLayouts {

/// UTF-16 without control characters other than line ends, cut after 16,384 units. `unitOfByte`, if given, gets the
/// unit that each byte became part of, and the end for the bytes that are cut off and for the one behind the text.
std::u16string preparedText(std::string_view text, std::vector<std::uint32_t>* unitOfByte = nullptr);
/// Positions behind which a line may end between words, and those between characters; the text's end is the last.
std::vector<std::size_t> wordEnds(std::u16string_view text);
std::vector<std::size_t> characterEnds(std::u16string_view text);
/// One line for each of the text's own, or broken between words at `maximumWidth`, within a word only where it is
/// wider than a line.
TextLayout inLines(std::u16string_view text, const TextSetting& setting, std::optional<double> maximumWidth);
/// One line for each of the text's own; one that is too wide, and the last that fits the height when others follow,
/// ends with an ellipsis.
TextLayout truncated(std::u16string_view text, const TextSetting& setting, double width, double height);

} // namespace TextLayouts

} // namespace Ostrel
