#include "OstrelDialect/OptionValues.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/Formula.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace Ostrel::OptionValues {

namespace {

constexpr bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

std::string_view trimmedBlanks(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// Authors write comments behind numbers and colors, though the language has none there.
std::string_view withoutComment(std::string_view text) {
    for (auto at = text.find(';'); at != std::string_view::npos; at = text.find(';', at + 1)) {
        if (at > 0 && isBlank(text[at - 1]))
            return text.substr(0, at);
    }
    return text;
}

/// The length of the pair of parentheses that the text begins with, absent when it is not closed.
std::optional<std::size_t> parenthesesLength(std::string_view text) {
    std::size_t depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '(')
            ++depth;
        else if (text[i] == ')' && --depth == 0)
            return i + 1;
    }
    return std::nullopt;
}

struct LeadingNumber {
    double value = 0;
    std::string_view rest;
};

std::optional<LeadingNumber> leadingNumber(std::string_view text) {
    if (text.starts_with('(')) {
        // Skins also write `(a)+(b)`.
        if (const auto whole = isInParentheses(text) ? Formula::compile(text) : std::nullopt) {
            if (const auto value = whole->evaluate())
                return LeadingNumber{*value, {}};
        }
        const auto length = parenthesesLength(text);
        const auto formula = length ? Formula::compile(text.substr(0, *length)) : std::nullopt;
        const auto value = formula ? formula->evaluate() : std::nullopt;
        return value ? std::optional(LeadingNumber{*value, text.substr(*length)}) : std::nullopt;
    }
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+'))
        text.remove_prefix(1);
    const auto found = parseNumberPrefix(text.substr(0, text.find_first_not_of("0123456789.")));
    if (found.length == 0 || !std::isfinite(found.value))
        return std::nullopt;
    return LeadingNumber{isNegative ? -found.value : found.value, text.substr(found.length)};
}

/// Whatever stands behind the number is a note.
std::optional<double> trimmedNumber(std::string_view text) {
    const auto leading = leadingNumber(text);
    return leading ? std::optional(leading->value) : std::nullopt;
}

int hexadecimalDigit(char c) {
    if (isASCIIDigit(c))
        return c - '0';
    const char upper = asciiUpper(c);
    return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

std::optional<ColorBytes> hexadecimalColor(std::string_view text) {
    if (text.size() != 6 && text.size() != 8)
        return std::nullopt;
    ColorBytes bytes = {0, 0, 0, 255};
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const int high = hexadecimalDigit(text[i]);
        const int low = hexadecimalDigit(text[i + 1]);
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes[i / 2] = static_cast<std::uint8_t>(high * 16 + low);
    }
    return bytes;
}

/// Calls `take(item)` for each item; stops when it returns false.
template <typename Take> void eachItem(std::string_view text, char separator, Take take) {
    std::size_t depth = 0;
    std::size_t begin = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == separator && depth == 0) {
            if (!take(trimmedBlanks(text.substr(begin, i - begin))))
                return;
            begin = i + 1;
        } else if (c == '(') {
            ++depth;
        } else if (c == ')' && depth > 0) {
            --depth;
        }
    }
    take(trimmedBlanks(text.substr(begin)));
}

/// A double with one binary place more than decimals asked for lies half-way between two decimals, and no other does.
/// The correctly rounded text takes the even one; the next double outwards gives the outer one.
double movedOffHalf(double number, int decimals) {
    const double scaled = std::ldexp(std::abs(number), decimals + 1);
    constexpr double WholeFromHere = 9007199254740992.0;
    if (scaled >= WholeFromHere || scaled != std::floor(scaled) || std::fmod(scaled, 2) == 0)
        return number;
    return std::nextafter(number, std::copysign(std::numeric_limits<double>::infinity(), number));
}

} // namespace

bool isInParentheses(std::string_view text) {
    text = trimmedBlanks(text);
    return text.size() >= 2 && text.front() == '(' && text.back() == ')';
}

std::optional<double> number(std::string_view text) {
    return trimmedNumber(trimmedBlanks(text));
}

std::optional<double> numberAlone(std::string_view text) {
    const auto leading = leadingNumber(trimmedBlanks(withoutComment(text)));
    return leading && leading->rest.empty() ? std::optional(leading->value) : std::nullopt;
}

std::optional<int> integer(std::string_view text) {
    const auto value = number(text);
    if (!value)
        return std::nullopt;
    return static_cast<int>(std::clamp(
        std::trunc(*value), double{std::numeric_limits<int>::min()}, double{std::numeric_limits<int>::max()}));
}

std::optional<bool> isOn(std::string_view text) {
    const auto value = number(text);
    return value ? std::optional(*value != 0) : std::nullopt;
}

std::optional<ColorBytes> color(std::string_view text) {
    text = trimmedBlanks(withoutComment(text));
    if (text.find(',') == std::string_view::npos)
        return hexadecimalColor(text);
    ColorBytes bytes = {0, 0, 0, 255};
    std::size_t count = 0;
    bool isColor = true;
    eachItem(text, ',', [&](std::string_view item) {
        const auto value = trimmedNumber(item);
        // A comma behind the last part is a slip that leaves the opacity out.
        if (!value && item.empty() && count == 3)
            return true;
        isColor = value && count < bytes.size();
        if (isColor)
            bytes[count++] = static_cast<std::uint8_t>(std::clamp(*value, 0.0, 255.0));
        return isColor;
    });
    return isColor && count >= 3 ? std::optional(bytes) : std::nullopt;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> items;
    eachItem(text, separator, [&](std::string_view item) {
        items.push_back(item);
        return true;
    });
    return items;
}

std::vector<std::optional<double>> numbers(std::string_view text, char separator) {
    std::vector<std::optional<double>> values;
    eachItem(withoutComment(text), separator, [&](std::string_view item) {
        values.push_back(trimmedNumber(item));
        return true;
    });
    return values;
}

std::string_view unquoted(std::string_view text) {
    return withoutDoubleQuotes(text);
}

std::string fixedText(double number, int decimals) {
    decimals = std::clamp(decimals, 0, 1000);
    auto text = formatFixed(movedOffHalf(number, decimals), decimals);
    if (text.starts_with('-') && text.find_first_not_of("-0.") == std::string::npos)
        text.erase(0, 1);
    return text;
}

std::string numberText(double number, int decimals) {
    constexpr double ExactWhole = 1e15;
    if (std::abs(number) < ExactWhole && number == std::trunc(number))
        return formatInteger(static_cast<std::int64_t>(number));
    const auto shortest = formatShortest(number);
    const auto point = shortest.find('.');
    if (point != std::string::npos && !shortest.ends_with(".0") && shortest.find_first_of("en") == std::string::npos
        && shortest.size() - point - 1 <= static_cast<std::size_t>(std::max(decimals, 0)))
        return shortest;
    auto text = fixedText(number, decimals);
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.ends_with('.'))
            text.pop_back();
    }
    return text;
}

} // namespace Ostrel::OptionValues
