#include "OstrelEngine/Meters/TextFormatter.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace Ostrel::TextFormatter {

namespace {

/// Ten values that each name the next a hundred times would otherwise fill the memory.
constexpr std::size_t LargestText = 1 << 20;

std::int64_t integerOption(const Options& options, const CaseKey& key) {
    return parseInteger(option(options, key).value_or("")).value_or(0);
}

std::string autoScaled(double value, int decimals) {
    static constexpr std::array Suffixes = {"", "k", "M", "G", "T", "P"};
    std::size_t step = 0;
    while (std::abs(value) >= 1024 && step + 1 < Suffixes.size()) {
        value /= 1024;
        ++step;
    }
    // The blank stands before the empty suffix too.
    return formatFixed(value, decimals) + ' ' + Suffixes[step];
}

std::string replacementText(const MeasureValue& value, const NumberStyle& style) {
    if (style.percentual)
        return formatFixed(value.percentValue(), style.decimals.value_or(0));
    if (style.autoScale)
        return autoScaled(value.numericValue, style.decimals.value_or(1));
    if (value.preferStringValue || !value.stringValue.empty())
        return value.stringValue;
    const double number = value.numericValue;
    if (style.decimals)
        return formatFixed(number, *style.decimals);
    const bool isWhole = number == std::round(number) && std::abs(number) < 1e15;
    return formatFixed(number, isWhole ? 0 : 2);
}

/// "%" and the number.
struct Token {
    explicit Token(std::size_t number) {
        const auto end = std::to_chars(characters.data() + 1, characters.data() + characters.size(), number).ptr;
        length = static_cast<std::size_t>(end - characters.data());
    }
    std::string_view text() const { return {characters.data(), length}; }

    std::array<char, 24> characters = {'%'};
    std::size_t length = 0;
};

std::size_t occurrences(std::string_view text, std::string_view token) {
    std::size_t count = 0;
    for (auto at = text.find(token); at != std::string_view::npos; at = text.find(token, at + token.size()))
        ++count;
    return count;
}

/// The character that an escape at the beginning of the text stands for, and the escape's length.
std::optional<std::pair<char32_t, std::size_t>> hexEscape(std::string_view text) {
    constexpr std::string_view Open = "[\\x";
    if (!text.starts_with(Open))
        return std::nullopt;
    const auto close = text.substr(0, Open.size() + 7).find(']', Open.size() + 2);
    if (close == std::string_view::npos)
        return std::nullopt;
    std::uint32_t code = 0;
    const auto [end, error] = std::from_chars(text.data() + Open.size(), text.data() + close, code, 16);
    if (error != std::errc() || end != text.data() + close)
        return std::nullopt;
    if (code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
        return std::nullopt;
    return std::pair(char32_t{code}, close + 1);
}

std::string decodeHexEscapes(std::string text) {
    auto at = text.find("[\\x");
    if (at == std::string::npos)
        return text;
    std::string result = text.substr(0, at);
    while (at < text.size()) {
        if (const auto escape = hexEscape(std::string_view(text).substr(at))) {
            appendCharacter(result, escape->first);
            at += escape->second;
        } else {
            result.push_back(text[at++]);
        }
    }
    return result;
}

} // namespace

NumberStyle numberStyle(const Options& options) {
    NumberStyle style;
    style.autoScale = integerOption(options, "AutoScale"_key) >= 1;
    style.percentual = integerOption(options, "Percentual"_key) == 1;
    if (const auto decimals = parseInteger(option(options, "NumOfDecimals"_key).value_or("")))
        style.decimals = static_cast<int>(std::clamp<std::int64_t>(*decimals, -1, std::numeric_limits<int>::max()));
    return style;
}

std::string format(std::string_view textTemplate, std::span<const MeasureValue> values, const NumberStyle& style) {
    std::string text(textTemplate);
    // From the highest number down, or "%1" would eat the beginning of "%10".
    for (std::size_t n = values.size(); n >= 1; --n) {
        const Token token(n);
        const auto count = occurrences(text, token.text());
        if (count == 0)
            continue;
        const auto replacement = replacementText(values[n - 1], style);
        if (text.size() + count * replacement.size() <= LargestText)
            text = replacingOccurrences(text, token.text(), replacement);
    }
    return decodeHexEscapes(std::move(text));
}

std::string applyCase(std::string_view text, std::optional<std::string_view> stringCase) {
    if (!stringCase)
        return std::string(text);
    if (equalsIgnoringCase(*stringCase, "UPPER"))
        return upperCased(text);
    if (equalsIgnoringCase(*stringCase, "LOWER"))
        return lowerCased(text);
    if (equalsIgnoringCase(*stringCase, "PROPER"))
        return capitalizedWords(text);
    return std::string(text);
}

} // namespace Ostrel::TextFormatter
