#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Values as options of the full dialect write them. The texts have their references resolved already. Views point into
/// the argument.
namespace Ostrel::OptionValues {

/// Red, green, blue, opacity, each 0 to 255.
using ColorBytes = std::array<std::uint8_t, 4>;

/// Whether the trimmed text begins with "(" and ends with ")": only then is an option's text a formula. Skins also
/// write `(a)+(b)`.
bool isInParentheses(std::string_view text);
/// The decimal number without exponent, or the formula in parentheses, that the text begins with; authors write units
/// and notes behind it. Absent when it begins with neither, or the formula has no value.
std::optional<double> number(std::string_view text);
/// The same where other texts have a meaning of their own: absent when more follows than a blank, ";" and a note.
std::optional<double> numberAlone(std::string_view text);
/// The same, cut to a whole number and held to the range of int.
std::optional<int> integer(std::string_view text);
/// On when the number is not 0.
std::optional<bool> isOn(std::string_view text);
/// "R,G,B[,A]" with numbers or formulas as items, fractions dropped, each held to 0 to 255; or RRGGBB[AA]. Absent for
/// any other text.
std::optional<ColorBytes> color(std::string_view text);
/// The items between separators that stand outside parentheses, trimmed; n separators give n + 1 items.
std::vector<std::string_view> split(std::string_view text, char separator);
/// Numbers between separators; an item that is none is absent.
std::vector<std::optional<double>> numbers(std::string_view text, char separator);
/// Without one pair of enclosing double quotes.
std::string_view unquoted(std::string_view text);
/// The text of a number where nothing formats it: at most `decimals` decimals, halves away from zero, trailing zeros
/// cut, no exponent, no negative zero.
std::string numberText(double number, int decimals);
/// Exactly `decimals` decimals, halves away from zero, no negative zero.
std::string fixedText(double number, int decimals);

} // namespace Ostrel::OptionValues
