#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelEngine/Measures/MeasureValue.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Ostrel::TextFormatter {

/// How a text shows numbers, from its meter's options.
struct NumberStyle {
    /// AutoScale of 1 or more: scaled by 1024, with a suffix.
    bool autoScale = false;
    /// NumOfDecimals; absent when it is missing or no integer.
    std::optional<int> decimals;
    /// Percentual of exactly 1: as a percentage of the measure's range.
    bool percentual = false;

    friend bool operator==(const NumberStyle&, const NumberStyle&) = default;
};

NumberStyle numberStyle(const Options& options);

/// The template with "%1", "%2", ... replaced by the values and "[\x41]" by characters. Values may name tokens of lower
/// number, which are replaced in turn; a text that would grow beyond 1 MiB keeps its tokens.
std::string format(std::string_view textTemplate, std::span<const MeasureValue> values, const NumberStyle& style);
/// UPPER, LOWER or PROPER in any case; everything else leaves the text.
std::string applyCase(std::string_view text, std::optional<std::string_view> stringCase);

} // namespace Ostrel::TextFormatter
