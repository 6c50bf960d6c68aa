#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// Option text that may hold an expression: the steps that need nothing of a running skin.
namespace Ostrel::ExpressionText {

/// A to Z, a to z and the underscore.
constexpr bool isIdentifierStartByte(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}
constexpr bool isIdentifierContinuationByte(char c) {
    return isIdentifierStartByte(c) || (c >= '0' && c <= '9');
}
bool containsIdentifierCandidates(std::string_view text);
/// The next identifier at or behind `from`; both are the end of the text when there is none.
struct IdentifierRange {
    std::size_t begin = 0;
    std::size_t end = 0;
};
IdentifierRange nextIdentifier(std::string_view text, std::size_t from);
bool containsASCIIAlphabeticCharacters(std::string_view text);

/// "<>" becomes "!=" and a single "=" becomes "==".
std::string normalizeComparisonOperators(std::string_view text);
/// The same, and in a text with letters " and ", " or " and " not " in any case become their signs.
std::string normalizeExpression(std::string_view text);

/// The value of an expression that is normalized and holds no names any more; absent when it holds any other
/// character than those of an expression, has no value or is not finite.
std::optional<double> evaluateNormalized(std::string_view text);
/// The same for plain text, without `&`, `|` and `%`: a single "=" or a name has no value.
std::optional<double> evaluateNumericExpression(std::string_view text);

/// Whether the text looks like arithmetic rather than a finished number or word.
bool shouldAttemptNumericEvaluation(std::string_view text);

/// What stands for a "#Name#", given its name; null keeps the token.
using VariableLookup = std::function<const std::string*(std::string_view name)>;
/// Appends the text with each "#Name#" that has a value replaced. A name holds neither "#" nor a line end, and values
/// are not looked into again. A token without a value still takes both its signs. So does one whose value would make
/// the result longer than `LongestSubstitution`: variables that hold each other twice grow without end.
constexpr std::size_t LongestSubstitution = 1 << 18;
void appendWithVariables(std::string& result, std::string_view text, const VariableLookup& lookup);

} // namespace Ostrel::ExpressionText
