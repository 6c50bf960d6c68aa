#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Values as options of the full dialect write them. The texts have their references resolved already.
namespace Ostrel::OptionValues {

/// Red, green, blue, opacity, each 0 to 255.
using ColorBytes = std::array<std::uint8_t, 4>;

/// A number or a formula wholly in parentheses, what follows a blank and ";" ignored. Absent when it is neither.
std::optional<double> number(std::string_view text);
/// The same, cut to a whole number and held to the range of int.
std::optional<int> integer(std::string_view text);
/// On when the number is not 0.
std::optional<bool> isOn(std::string_view text);
/// "R,G,B[,A]" with formulas as items, or RRGGBB[AA]. Absent for any other text.
std::optional<ColorBytes> color(std::string_view text);
/// The items between separators that stand outside parentheses, trimmed.
std::vector<std::string_view> split(std::string_view text, char separator);
/// Numbers between separators; an item that is none is absent.
std::vector<std::optional<double>> numbers(std::string_view text, char separator);
/// Without one pair of enclosing double quotes.
std::string_view unquoted(std::string_view text);
/// The text of a number where nothing formats it: at most `decimals` decimals, halves away from zero, trailing zeros
/// cut, no exponent, no negative zero.
std::string numberText(double number, int decimals);

} // namespace Ostrel::OptionValues
