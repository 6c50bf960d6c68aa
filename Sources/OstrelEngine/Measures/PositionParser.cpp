#include "OstrelEngine/Measures/PositionParser.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/CalcMeasure.h"

namespace Ostrel::PositionParser {

namespace {

std::optional<double> evaluateNumeric(std::string_view text) {
    if (const auto number = parseDouble(text))
        return number;
    const auto unquoted = withoutDoubleQuotes(text);
    if (const auto number = parseDouble(unquoted))
        return number;
    return CalcMeasure::evaluateIfValid(unquoted);
}

std::optional<PositionValue> positionFrom(std::string_view text, RelativeReference reference) {
    const auto number = evaluateNumeric(text);
    return number ? std::optional(PositionValue{*number, reference}) : std::nullopt;
}

} // namespace

std::optional<PositionValue> parsePosition(std::optional<std::string_view> text) {
    const auto whole = trimmedWhitespace(text.value_or(""));
    if (whole.empty())
        return std::nullopt;
    if (whole.back() != 'r' && whole.back() != 'R')
        return positionFrom(whole, RelativeReference::none);
    const auto reference = whole.back() == 'R' ? RelativeReference::previousEdge : RelativeReference::previousOrigin;
    const auto offset = trimmed(whole.substr(0, whole.size() - 1));
    return offset.empty() ? PositionValue{0, reference} : positionFrom(offset, reference);
}

double parseDimension(std::optional<std::string_view> text) {
    const auto whole = trimmedWhitespace(text.value_or(""));
    return whole.empty() ? 0 : evaluateNumeric(whole).value_or(0);
}

} // namespace Ostrel::PositionParser
