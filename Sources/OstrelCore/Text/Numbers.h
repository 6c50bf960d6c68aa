#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Text to number and back, never through the C locale.
namespace Ostrel {

/// The whole text as a decimal floating number: sign, digits with a point on either side of which digits may be
/// missing, exponent; also "inf", "infinity" and "nan" in any case. Nothing around it, no hexadecimal. Too large
/// becomes infinity, too small zero.
std::optional<double> parseDouble(std::string_view text);

/// The decimal number that a text begins with, without a sign, and the bytes it takes; 0 bytes where there is none. An
/// "e" without digits behind it is not part of it.
struct NumberPrefix {
    double value = 0;
    std::size_t length = 0;
};
NumberPrefix parseNumberPrefix(std::string_view text);

/// The whole text as a base-10 integer with optional sign; absent outside 64 bits.
std::optional<std::int64_t> parseInteger(std::string_view text);

/// As C's "%.<decimals>f"; a negative count, which C ignores, means 6. Non-finite: "inf", "-inf", "nan".
std::string formatFixed(double value, int decimals);
/// As C's "%.<precision>g".
std::string formatGeneral(double value, int precision = 6);
/// Appends what formatGeneral gives, without a temporary.
void appendGeneral(std::string& text, double value, int precision = 6);

/// Decimal digits.
std::string formatInteger(std::int64_t value);
/// The fewest digits that read back as the same number, without exponent and with at least one decimal: "1.0".
std::string formatShortest(double value);

/// Cut toward zero; saturates, NaN gives 0.
std::int64_t numericAsInt64(double value);
/// A near-integer (within 1e-7) without decimals, anything else with at most six, trailing zeros removed.
std::string formatNumeric(double value);

} // namespace Ostrel
