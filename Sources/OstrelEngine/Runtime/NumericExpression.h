#pragma once

#include <optional>
#include <string_view>

namespace Ostrel::NumericExpression {

/// The value of the script "(" + `text` + ")" as a number, with JavaScript's operators, conversions and grammar:
/// doubles, booleans as 1 and 0, 32-bit `& | << >> >>>`, `&& || ?? ?:`, octal `010`, comments of all
/// kinds, and semicolons put in at line ends. `text` may close the parenthesis itself: "1)+(2" is 3.
///
/// Absent when the script has a syntax error or the result is not finite. There are no names, strings or commas;
/// calls, functions, regular expressions, assignments, `++` and `--` have no value wherever they stand, and neither
/// has what nests deeper than `MaxDepth`.
std::optional<double> evaluate(std::string_view text);

constexpr int MaxDepth = 1000;

} // namespace Ostrel::NumericExpression
