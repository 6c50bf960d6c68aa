#include "OstrelEngine/Runtime/ExpressionText.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Runtime/NumericExpression.h"

#include <algorithm>
#include <array>

namespace Ostrel::ExpressionText {

namespace {

constexpr bool isASCIILetter(char c) {
    return asciiUpper(c) >= 'A' && asciiUpper(c) <= 'Z';
}

class CharacterSet {
public:
    consteval explicit CharacterSet(std::string_view characters) {
        for (const char c : characters)
            members_[static_cast<unsigned char>(c)] = true;
    }
    bool containsAllOf(std::string_view text) const {
        return std::ranges::all_of(text, [this](char c) { return members_[static_cast<unsigned char>(c)]; });
    }

private:
    std::array<bool, 256> members_{};
};

constexpr CharacterSet NormalizedCharacters("0123456789.+-*/()<>!=?:&|% \t\r\n");
constexpr CharacterSet PlainCharacters("0123456789.+-*/()<>!=?: \t\r\n");

std::optional<double> evaluate(std::string_view text, const CharacterSet& admitted) {
    if (text.empty() || !admitted.containsAllOf(text))
        return std::nullopt;
    return NumericExpression::evaluate(text);
}

} // namespace

bool containsIdentifierCandidates(std::string_view text) {
    return std::ranges::any_of(text, isIdentifierStartByte);
}

bool containsASCIIAlphabeticCharacters(std::string_view text) {
    return std::ranges::any_of(text, isASCIILetter);
}

IdentifierRange nextIdentifier(std::string_view text, std::size_t from) {
    while (from < text.size() && !isIdentifierStartByte(text[from]))
        ++from;
    auto end = from;
    while (end < text.size() && isIdentifierContinuationByte(text[end]))
        ++end;
    return {from, end};
}

std::string normalizeComparisonOperators(std::string_view text) {
    std::string result;
    result.reserve(text.size() + 4);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const char next = i + 1 < text.size() ? text[i + 1] : '\0';
        if (c == '<' && next == '>') {
            result += "!=";
            ++i;
        } else if (c == '=') {
            const char previous = i > 0 ? text[i - 1] : ' ';
            const bool isPart = std::string_view("<>!=").find(previous) != std::string_view::npos || next == '=';
            result += isPart ? "=" : "==";
        } else {
            result += c;
        }
    }
    return result;
}

std::string normalizeExpression(std::string_view text) {
    std::string result = normalizeComparisonOperators(text);
    if (!containsASCIIAlphabeticCharacters(result))
        return result;
    result = replacingOccurrences(result, "&&", " && ");
    result = replacingOccurrences(result, "||", " || ");
    result = replacingOccurrencesIgnoringCase(result, " and ", " && ");
    result = replacingOccurrencesIgnoringCase(result, " or ", " || ");
    return replacingOccurrencesIgnoringCase(result, " not ", " !");
}

std::optional<double> evaluateNormalized(std::string_view text) {
    return evaluate(trimmed(text), NormalizedCharacters);
}

std::optional<double> evaluateNumericExpression(std::string_view text) {
    return evaluate(trimmed(text), PlainCharacters);
}

bool shouldAttemptNumericEvaluation(std::string_view text) {
    const auto expression = trimmed(text);
    return expression.find_first_of("+-*/?<>!=(),") != std::string_view::npos && !parseDouble(expression);
}

void appendWithVariables(std::string& result, std::string_view text, const VariableLookup& lookup) {
    std::size_t copied = 0;
    auto open = text.find('#');
    while (open != std::string_view::npos) {
        const auto close = text.find_first_of("#\r\n", open + 1);
        if (close == std::string_view::npos)
            break;
        if (text[close] != '#') {
            open = text.find('#', close);
            continue;
        }
        if (close == open + 1) {
            open = close;
            continue;
        }
        const auto* value = lookup(text.substr(open + 1, close - open - 1));
        if (value && result.size() + value->size() <= LongestSubstitution) {
            result.append(text, copied, open - copied);
            result += *value;
            copied = close + 1;
        }
        open = text.find('#', close + 1);
    }
    result.append(text, copied);
}

} // namespace Ostrel::ExpressionText
