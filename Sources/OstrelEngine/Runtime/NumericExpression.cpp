#include "OstrelEngine/Runtime/NumericExpression.h"

#include "OstrelEngine/Runtime/NumericExpressionLexer.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace Ostrel::NumericExpression {

namespace {

/// The only two types of value that the admitted characters can build.
struct Operand {
    double number = 0;
    bool isBoolean = false;

    static Operand boolean(bool value) { return {value ? 1.0 : 0.0, true}; }
    bool isTruthy() const { return number != 0 && !std::isnan(number); }
};

std::uint32_t toUint32(double value) {
    if (!std::isfinite(value))
        return 0;
    constexpr double TwoTo32 = 4294967296.0;
    const double wrapped = std::fmod(std::trunc(value), TwoTo32);
    return static_cast<std::uint32_t>(wrapped < 0 ? wrapped + TwoTo32 : wrapped);
}

std::int32_t toInt32(double value) {
    return static_cast<std::int32_t>(toUint32(value));
}

double power(double base, double exponent) {
    // Here the script's rules and those of the C library part: these are 1 in C.
    if (std::isnan(exponent) || (std::abs(base) == 1 && std::isinf(exponent)))
        return std::numeric_limits<double>::quiet_NaN();
    return std::pow(base, exponent);
}

constexpr int NoPrecedence = 0;
constexpr int LogicalPrecedence = 1;
constexpr int BitOrPrecedence = 3;

constexpr int precedence(Token token) {
    switch (token) {
    case Token::LogicalOr:
        return LogicalPrecedence;
    case Token::LogicalAnd:
        return 2;
    case Token::BitOr:
        return BitOrPrecedence;
    case Token::BitAnd:
        return 4;
    case Token::Equal:
    case Token::NotEqual:
    case Token::StrictEqual:
    case Token::StrictNotEqual:
        return 5;
    case Token::Less:
    case Token::Greater:
    case Token::LessOrEqual:
    case Token::GreaterOrEqual:
        return 6;
    case Token::ShiftLeft:
    case Token::ShiftRight:
    case Token::ShiftRightUnsigned:
        return 7;
    case Token::Plus:
    case Token::Minus:
        return 8;
    case Token::Times:
    case Token::Divide:
    case Token::Remainder:
        return 9;
    default:
        return NoPrecedence;
    }
}

Operand apply(Token token, Operand left, Operand right) {
    const double a = left.number;
    const double b = right.number;
    switch (token) {
    case Token::LogicalOr:
        return left.isTruthy() ? left : right;
    case Token::LogicalAnd:
        return left.isTruthy() ? right : left;
    case Token::BitOr:
        return {static_cast<double>(toInt32(a) | toInt32(b))};
    case Token::BitAnd:
        return {static_cast<double>(toInt32(a) & toInt32(b))};
    case Token::Equal:
        return Operand::boolean(a == b);
    case Token::NotEqual:
        return Operand::boolean(a != b);
    case Token::StrictEqual:
        return Operand::boolean(left.isBoolean == right.isBoolean && a == b);
    case Token::StrictNotEqual:
        return Operand::boolean(left.isBoolean != right.isBoolean || a != b);
    case Token::Less:
        return Operand::boolean(a < b);
    case Token::Greater:
        return Operand::boolean(a > b);
    case Token::LessOrEqual:
        return Operand::boolean(a <= b);
    case Token::GreaterOrEqual:
        return Operand::boolean(a >= b);
    case Token::ShiftLeft:
        return {static_cast<double>(static_cast<std::int32_t>(toUint32(a) << (toUint32(b) & 31U)))};
    case Token::ShiftRight:
        return {static_cast<double>(toInt32(a) >> (toUint32(b) & 31U))};
    case Token::ShiftRightUnsigned:
        return {static_cast<double>(toUint32(a) >> (toUint32(b) & 31U))};
    case Token::Plus:
        return {a + b};
    case Token::Minus:
        return {a - b};
    case Token::Times:
        return {a * b};
    case Token::Divide:
        return {a / b};
    default:
        return {std::fmod(a, b)};
    }
}

/// Recursive descent that computes as it reads. Nothing in the grammar has an effect, so the side of `?:`, `&&` and
/// `||` that a script would skip may as well be computed.
class Evaluator {
public:
    explicit Evaluator(std::string_view text)
        : lexer_(text) { }

    /// Nearly every text is one expression within the parentheses around it, and needs no look at them.
    std::optional<double> runInside() {
        lexer_.advance();
        const Operand value = conditional();
        if (failed_ || lexer_.token() != Token::CloseParenthesis)
            return std::nullopt;
        lexer_.advance();
        return lexer_.token() == Token::End && std::isfinite(value.number) ? std::optional(value.number) : std::nullopt;
    }

    /// The whole script, of which the text may have closed the first parenthesis early.
    std::optional<double> run() {
        Operand last = conditional();
        // What follows an expression on a new line is a statement of its own, and the last one counts.
        while (!failed_ && lexer_.token() != Token::End) {
            if (!lexer_.followsLineEnd())
                return std::nullopt;
            last = conditional();
        }
        if (failed_ || !std::isfinite(last.number))
            return std::nullopt;
        return last.number;
    }

private:
    class Nesting {
    public:
        explicit Nesting(Evaluator& evaluator)
            : evaluator_(evaluator) {
            if (++evaluator_.depth_ > MaxDepth)
                evaluator_.failed_ = true;
        }
        ~Nesting() { --evaluator_.depth_; }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;

    private:
        Evaluator& evaluator_;
    };

    Operand fail() {
        failed_ = true;
        return {};
    }

    bool take(Token token) {
        if (failed_ || lexer_.token() != token)
            return false;
        lexer_.advance();
        return true;
    }

    /// A loop over the alternatives, so that a long chain of them does not nest.
    Operand conditional() {
        Operand test = shortCircuit();
        if (lexer_.token() != Token::Question)
            return test;
        std::optional<Operand> chosen;
        while (true) {
            if (!take(Token::Question))
                return chosen.value_or(test);
            const Operand consequent = nestedConditional();
            if (!take(Token::Colon))
                return fail();
            if (!chosen && test.isTruthy())
                chosen = consequent;
            test = shortCircuit();
        }
    }

    Operand nestedConditional() {
        const Nesting nesting(*this);
        return failed_ ? Operand{} : conditional();
    }

    /// `??` may not stand beside `&&` or `||` without parentheses.
    Operand shortCircuit() {
        const Operand operand = exponentiation();
        if (isEndOfOperands(lexer_.token()))
            return operand;
        const Operand first = binary(operand, BitOrPrecedence);
        if (isEndOfOperands(lexer_.token()))
            return first;
        if (lexer_.token() != Token::Coalesce) {
            const Operand result = binary(first, LogicalPrecedence);
            return lexer_.token() == Token::Coalesce ? fail() : result;
        }
        while (take(Token::Coalesce))
            binary(exponentiation(), BitOrPrecedence);
        const bool isMixed = lexer_.token() == Token::LogicalAnd || lexer_.token() == Token::LogicalOr;
        // Numbers and booleans are never null, so the right side never counts.
        return isMixed ? fail() : first;
    }

    static bool isEndOfOperands(Token token) {
        return token == Token::CloseParenthesis || token == Token::Question || token == Token::Colon;
    }

    /// Takes operators of `minimum` and above; all of them group to the left.
    Operand binary(Operand left, int minimum) {
        while (!failed_) {
            const Token token = lexer_.token();
            const int level = precedence(token);
            if (level == NoPrecedence || level < minimum)
                break;
            lexer_.advance();
            Operand right = exponentiation();
            if (!failed_ && precedence(lexer_.token()) > level)
                right = binary(right, level + 1);
            left = apply(token, left, right);
        }
        return left;
    }

    Operand exponentiation() {
        if (lexer_.token() == Token::Number) {
            const Operand base = number();
            return lexer_.token() == Token::Power ? raised(base) : base;
        }
        const bool isPrefixed = isPrefix(lexer_.token());
        const Operand base = unary();
        if (lexer_.token() != Token::Power)
            return base;
        return isPrefixed ? fail() : raised(base);
    }

    Operand raised(Operand base) {
        const Nesting nesting(*this);
        return take(Token::Power) ? Operand{power(base.number, exponentiation().number)} : fail();
    }

    static bool isPrefix(Token token) { return token == Token::Plus || token == Token::Minus || token == Token::Not; }

    Operand unary() {
        const Token token = lexer_.token();
        if (!isPrefix(token))
            return primary();
        const Nesting nesting(*this);
        if (!take(token))
            return fail();
        const Operand operand = unary();
        if (token == Token::Not)
            return Operand::boolean(!operand.isTruthy());
        return {token == Token::Minus ? -operand.number : operand.number};
    }

    Operand primary() {
        if (lexer_.token() == Token::Number)
            return number();
        if (!take(Token::OpenParenthesis))
            return fail();
        const Operand result = nestedConditional();
        return take(Token::CloseParenthesis) ? unlessCalled(result) : fail();
    }

    Operand number() {
        const Operand result{lexer_.number()};
        lexer_.advance();
        return unlessCalled(result);
    }

    /// A parenthesis behind a value would call it, also on the next line.
    Operand unlessCalled(Operand value) { return lexer_.token() == Token::OpenParenthesis ? fail() : value; }

    Lexer lexer_;
    int depth_ = 0;
    bool failed_ = false;
};

} // namespace

std::optional<double> evaluate(std::string_view text) {
    const auto value = Evaluator(text).runInside();
    return value ? value : Evaluator(text).run();
}

} // namespace Ostrel::NumericExpression
