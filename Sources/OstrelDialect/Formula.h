#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace Ostrel {

/// What a formula may name besides its own functions and constants: the measures of a skin, and `Counter` and `Random`
/// where they exist.
class FormulaNames {
public:
    virtual ~FormulaNames() = default;
    /// A place for the value of a bare name, found once at compilation; absent makes the formula invalid.
    virtual std::optional<std::size_t> place(std::string_view name) const = 0;
    /// The present value at a place.
    virtual double value(std::size_t place) const = 0;
};

/// A formula of the full dialect, compiled once.
///
/// Operators from the tightest: unary `-` `+` `~`; `**` (right to left); `* / %`; `+ -`; `< <= > >=`; `= == <> !=`;
/// `&`; `^`; `|`; `&&`; `||`; `? :` (right to left). `&&`, `||` and `? :` evaluate only the side that decides. Literals
/// are decimal without exponent, `0b`, `0o` and `0x`. Functions and constants are known in any case. A bare name ends
/// at an operator, a parenthesis, a comma or a blank.
class Formula {
public:
    /// Absent when the text is no formula, names something unknown, is nested too deep or is too long. Without `names`
    /// any bare name but `PI` and `E` is unknown.
    static std::optional<Formula> compile(std::string_view text, const FormulaNames* names = nullptr);

    /// Absent when the result is not finite, after a division by zero and after an argument out of its domain. Takes
    /// the names that it was compiled with. Does not allocate for formulas of usual depth.
    std::optional<double> evaluate(const FormulaNames* names = nullptr) const;
    /// Whether it names nothing, so that its value never changes.
    bool isConstant() const { return isConstant_; }

    struct Instruction {
        double number = 0;
        /// A jump's target, a name's place or a function's number of arguments.
        std::uint32_t operand = 0;
        std::uint8_t code = 0;
    };

private:
    std::vector<Instruction> code_;
    std::uint32_t stackSize_ = 0;
    bool isConstant_ = true;
};

} // namespace Ostrel
