#include "OstrelCore/Text/Numbers.h"

#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace Ostrel {

namespace {

/// Whether a number out of range is too large rather than too small: the decimal exponent of its first digit decides.
bool isTooLarge(std::string_view digits) {
    const auto exponentAt = digits.find_first_of("eE");
    const auto mantissa = digits.substr(0, exponentAt);
    const auto point = std::min(mantissa.find('.'), mantissa.size());
    const auto first = mantissa.find_first_of("123456789");
    double exponent = static_cast<double>(point) - static_cast<double>(first);
    if (exponentAt != std::string_view::npos) {
        auto text = digits.substr(exponentAt + 1);
        const bool negative = text.starts_with('-');
        if (negative || text.starts_with('+'))
            text.remove_prefix(1);
        double written = 0;
        for (const char c : text)
            written = written * 10 + (c - '0');
        exponent += negative ? -written : written;
    }
    return exponent > 0;
}

/// Of digits, point and exponent that are there, whatever their number.
double readDecimal(std::string_view text) {
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::result_out_of_range)
        return isTooLarge(text) ? std::numeric_limits<double>::infinity() : 0.0;
    return value;
}

std::size_t exponentLength(std::string_view text) {
    if (text.empty() || (text[0] != 'e' && text[0] != 'E'))
        return 0;
    const std::size_t signs = text.size() > 1 && (text[1] == '+' || text[1] == '-') ? 1 : 0;
    std::size_t i = 1 + signs;
    while (i < text.size() && isASCIIDigit(text[i]))
        ++i;
    return i == 1 + signs ? 0 : i;
}

std::optional<double> parseNamed(std::string_view text) {
    if (equalsIgnoringCase(text, "INF") || equalsIgnoringCase(text, "INFINITY"))
        return std::numeric_limits<double>::infinity();
    if (equalsIgnoringCase(text, "NAN"))
        return std::numeric_limits<double>::quiet_NaN();
    return std::nullopt;
}

std::string_view nonFiniteText(double value) {
    if (std::isnan(value))
        return "nan";
    return value < 0 ? "-inf" : "inf";
}

} // namespace

NumberPrefix parseNumberPrefix(std::string_view text) {
    // Up to here digits and power of ten are exact doubles and their quotient is the nearest one. Nearly every number
    // of a skin is such, and the general road takes several times as long.
    constexpr std::size_t ExactDigits = 15;
    constexpr double PowersOfTen[]
        = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    const char* at = begin;
    std::uint64_t digits = 0;
    for (; at != end && isASCIIDigit(*at); ++at)
        digits = digits * 10 + static_cast<std::uint64_t>(*at - '0');
    auto count = static_cast<std::size_t>(at - begin);
    std::size_t decimals = 0;
    if (at != end && *at == '.') {
        const char* const point = at++;
        for (; at != end && isASCIIDigit(*at); ++at)
            digits = digits * 10 + static_cast<std::uint64_t>(*at - '0');
        decimals = static_cast<std::size_t>(at - point) - 1;
        count += decimals;
    }
    if (count == 0)
        return {};
    const auto length = static_cast<std::size_t>(at - begin);
    const bool mayHaveExponent = at != end && (*at == 'e' || *at == 'E');
    const auto exponent = mayHaveExponent ? exponentLength(text.substr(length)) : 0;
    if (exponent > 0 || count > ExactDigits)
        return {readDecimal(text.substr(0, length + exponent)), length + exponent};
    const auto value = static_cast<double>(static_cast<std::int64_t>(digits));
    return {decimals == 0 ? value : value / PowersOfTen[decimals], length};
}

std::optional<double> parseDouble(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    if (text.empty())
        return std::nullopt;
    const auto number = parseNumberPrefix(text);
    auto value = number.length == 0 ? parseNamed(text) : std::optional(number.value);
    if (number.length != 0 && number.length != text.size())
        return std::nullopt;
    return value && negative ? -*value : value;
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-'))
            return std::nullopt;
    }
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

std::string formatFixed(double value, int decimals) {
    if (!std::isfinite(value))
        return std::string(nonFiniteText(value));
    // The integer part of a double has at most 309 digits; a skin may ask for any number of decimals, and beyond 1,100
    // a double has only zeros.
    constexpr int MaximumDecimals = 1100;
    const int precision = decimals < 0 ? 6 : std::min(decimals, MaximumDecimals);
    std::array<char, MaximumDecimals + 320> buffer;
    const auto [end, error]
        = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, precision);
    return error == std::errc() ? std::string(buffer.data(), end) : std::string();
}

void appendGeneral(std::string& text, double value, int precision) {
    if (!std::isfinite(value)) {
        text.append(nonFiniteText(value));
        return;
    }
    std::array<char, 64> buffer;
    const auto [end, error] = std::to_chars(
        buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::general, std::min(precision, 40));
    if (error == std::errc())
        text.append(buffer.data(), end);
}

std::string formatGeneral(double value, int precision) {
    std::string text;
    appendGeneral(text, value, precision);
    return text;
}

std::string formatInteger(std::int64_t value) {
    std::array<char, 24> digits;
    const auto [end, error] = std::to_chars(digits.begin(), digits.end(), value);
    return error == std::errc() ? std::string(digits.begin(), end) : std::string();
}

std::string formatShortest(double value) {
    if (!std::isfinite(value))
        return std::string(nonFiniteText(value));
    std::array<char, 1200> buffer;
    const auto [end, error]
        = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed);
    std::string text(buffer.data(), error == std::errc() ? end : buffer.data());
    if (text.find('.') == std::string::npos)
        text += ".0";
    return text;
}

std::int64_t numericAsInt64(double value) {
    if (!std::isfinite(value))
        return 0;
    if (value >= 9223372036854775807.0)
        return std::numeric_limits<std::int64_t>::max();
    if (value <= -9223372036854775808.0)
        return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(value);
}

std::string formatNumeric(double value) {
    const double rounded = std::round(value);
    if (std::abs(value - rounded) < 0.0000001) {
        // Beyond 64 bits there is no integer form to cut to; the plain decimal digits say the same.
        if (std::abs(rounded) >= 9223372036854775807.0)
            return formatFixed(rounded, 0);
        return formatInteger(static_cast<std::int64_t>(rounded));
    }
    std::string text = formatFixed(value, 6);
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.ends_with('.'))
            text.pop_back();
    }
    return text;
}

} // namespace Ostrel
