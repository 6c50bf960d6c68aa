#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// What a formula may name besides its own functions and constants.
class FormulaNames {
public:
    virtual ~FormulaNames() = default;
    /// A place for the value of a bare name, found once at compilation; absent makes the formula invalid.
    virtual std::optional<std::size_t> place(std::string_view name) const = 0;
    /// The present value at a place.
    virtual double value(std::size_t place) const = 0;
};

/// A formula of the full dialect, compiled once: numbers, operators, functions, the chosen branch of `? :` only.
class Formula {
public:
    /// Absent when the text is no formula. Without `names` a bare name that is no constant makes it invalid.
    static std::optional<Formula> compile(std::string_view text, const FormulaNames* names = nullptr);

    /// Absent when the result is not finite, after a division by zero and after an argument out of its domain.
    std::optional<double> evaluate(const FormulaNames* names = nullptr) const;
    bool isConstant() const;

private:
    struct Instruction {
        unsigned char code = 0;
        double number = 0;
        std::size_t operand = 0;
    };
    std::vector<Instruction> code_;
};

} // namespace Ostrel
