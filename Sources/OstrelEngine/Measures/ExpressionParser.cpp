#include "OstrelEngine/Measures/ExpressionParser.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/IntegerConversion.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Ostrel {

namespace {

using Values = std::array<double, 3>;

/// `TRUNC` and the rest, by upper-cased name.
struct Function {
    std::string_view name;
    std::size_t argumentsNeeded;
    double (*value)(const Values& a, std::size_t count);
};

double rounded(const Values& a, std::size_t count) {
    if (count == 1)
        return std::round(a[0]);
    const double scale = std::pow(10.0, a[1]);
    return std::round(a[0] * scale) / scale;
}

// The order of comparisons matters where a NaN travels through and where low exceeds high.
constexpr Function Functions[] = {
    {"TRUNC", 1, [](const Values& a, std::size_t) { return static_cast<double>(integerOrStop(a[0])); }},
    {"FLOOR", 1, [](const Values& a, std::size_t) { return std::floor(a[0]); }},
    {"CEIL", 1, [](const Values& a, std::size_t) { return std::ceil(a[0]); }},
    {"ROUND", 1, rounded},
    {"ABS", 1, [](const Values& a, std::size_t) { return std::abs(a[0]); }},
    {"MAX", 2, [](const Values& a, std::size_t) { return std::max(a[0], a[1]); }},
    {"MIN", 2, [](const Values& a, std::size_t) { return std::min(a[0], a[1]); }},
    {"CLAMP", 3, [](const Values& a, std::size_t) { return std::max(a[1], std::min(a[2], a[0])); }},
    {"LOG", 1, [](const Values& a, std::size_t) { return std::log10(a[0]); }},
    {"LN", 1, [](const Values& a, std::size_t) { return std::log(a[0]); }},
    {"SIN", 1, [](const Values& a, std::size_t) { return std::sin(a[0]); }},
    {"COS", 1, [](const Values& a, std::size_t) { return std::cos(a[0]); }},
    {"TAN", 1, [](const Values& a, std::size_t) { return std::tan(a[0]); }},
    {"SQRT", 1, [](const Values& a, std::size_t) { return std::sqrt(a[0]); }},
    {"RAD", 1, [](const Values& a, std::size_t) { return a[0] * std::numbers::pi / 180.0; }},
};

const Function* findFunction(std::string_view name) {
    const auto* found = std::ranges::find(Functions, upperCased(name), &Function::name);
    return found == std::end(Functions) ? nullptr : found;
}

bool isLetter(char32_t c) {
    if (c < 0x80)
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    return u_isUAlphabetic(static_cast<UChar32>(c));
}

bool isBlank(char32_t c) {
    if (c < 0x80)
        return c == ' ' || (c >= '\t' && c <= '\r');
    return u_isUWhiteSpace(static_cast<UChar32>(c));
}

/// Whether the character belongs to the one before it, as a combining accent does.
bool isMark(char32_t c) {
    if (c < 0x80)
        return false;
    const auto kind = u_getIntPropertyValue(static_cast<UChar32>(c), UCHAR_GRAPHEME_CLUSTER_BREAK);
    return kind == U_GCB_EXTEND || kind == U_GCB_SPACING_MARK || kind == U_GCB_ZWJ;
}

} // namespace

std::optional<double> ExpressionParser::parse() {
    const auto result = parseExpression();
    skipWhitespace();
    return result && isAtEnd() ? std::optional(result.value) : std::nullopt;
}

ExpressionParser::Result ExpressionParser::parseExpression() {
    auto left = parseTerm();
    while (left) {
        skipWhitespace();
        const char sign = peek();
        if (sign != '+' && sign != '-')
            break;
        ++index_;
        const auto right = parseTerm();
        if (!right)
            return {};
        left.value = sign == '+' ? left.value + right.value : left.value - right.value;
    }
    return left;
}

ExpressionParser::Result ExpressionParser::parseTerm() {
    auto left = parseFactor();
    while (left) {
        skipWhitespace();
        const char sign = peek();
        if (sign != '*' && sign != '/' && sign != '%')
            break;
        ++index_;
        const auto right = parseFactor();
        if (!right || (sign != '*' && right.value == 0))
            return {};
        if (sign == '*')
            left.value *= right.value;
        else
            left.value = sign == '/' ? left.value / right.value : std::fmod(left.value, right.value);
    }
    return left;
}

ExpressionParser::Result ExpressionParser::parseFactor() {
    skipWhitespace();
    // The commonest case first: only a number begins so.
    if (isASCIIDigit(peek()) || peek() == '.')
        return parseNumber();
    // Signs stack; they are counted, so that a long row of them needs no depth.
    bool isNegative = false;
    while (peek() == '+' || peek() == '-') {
        isNegative ^= peek() == '-';
        ++index_;
        skipWhitespace();
    }
    auto result = parseUnsigned();
    if (isNegative)
        result.value = -result.value;
    return result;
}

ExpressionParser::Result ExpressionParser::parseUnsigned() {
    if (depth_ == MaximumDepth)
        return {};
    ++depth_;
    const auto result = consume('(') ? parseParenthesized() : parseCall();
    --depth_;
    return result;
}

/// What stands behind an opening parenthesis, with the closing one.
ExpressionParser::Result ExpressionParser::parseParenthesized() {
    const auto result = parseExpression();
    if (!result)
        return {};
    skipWhitespace();
    return consume(')') ? result : Result();
}

/// A call, or what stands behind one that had too few arguments.
ExpressionParser::Result ExpressionParser::parseCall() {
    if (const auto result = tryParseFunction())
        return result;
    return consume('(') ? parseParenthesized() : parseNumber();
}

/// Leaves the cursor where it was on failure, but behind the parenthesis when only arguments are missing: what follows
/// is then read as if the call were not there.
ExpressionParser::Result ExpressionParser::tryParseFunction() {
    const auto start = index_;
    const auto name = takeLetters();
    if (name.empty())
        return {};
    skipWhitespace();
    const auto arguments = consume('(') ? parseArguments() : std::nullopt;
    const auto* function = arguments ? findFunction(name) : nullptr;
    if (!function) {
        index_ = start;
        return {};
    }
    if (arguments->count < function->argumentsNeeded)
        return {};
    return {function->value(arguments->values, arguments->count), true};
}

/// The list behind an opening parenthesis, with the closing one.
std::optional<ExpressionParser::Arguments> ExpressionParser::parseArguments() {
    Arguments arguments;
    skipWhitespace();
    if (consume(')'))
        return arguments;
    do {
        const auto argument = parseExpression();
        if (!argument)
            return std::nullopt;
        if (arguments.count < arguments.values.size())
            arguments.values[arguments.count] = argument.value;
        ++arguments.count;
    } while (consume(','));
    skipWhitespace();
    return consume(')') ? std::optional(arguments) : std::nullopt;
}

/// Only ASCII digits: a digit of another script makes no number, and so ends the expression as invalid wherever it is.
ExpressionParser::Result ExpressionParser::parseNumber() {
    skipWhitespace();
    const auto number = parseNumberPrefix(text_.substr(index_));
    index_ += number.length;
    return {number.value, number.length > 0};
}

std::string_view ExpressionParser::takeLetters() {
    const auto start = index_;
    while (!isAtEnd()) {
        const auto c = decodeCharacter(text_, index_);
        if (!isLetter(c.value))
            break;
        index_ += c.length;
    }
    return text_.substr(start, index_ - start);
}

bool ExpressionParser::skipBlank() {
    const auto c = decodeCharacter(text_, index_);
    if (!isBlank(c.value))
        return false;
    index_ += c.length;
    if (isWhitespace(c.value) && c.value != '\t')
        skipMarks();
    return true;
}

/// An accent on a blank is one character with it. Tabs and line ends carry none.
void ExpressionParser::skipMarks() {
    while (!isAtEnd()) {
        const auto c = decodeCharacter(text_, index_);
        if (!isMark(c.value))
            return;
        index_ += c.length;
    }
}

} // namespace Ostrel
