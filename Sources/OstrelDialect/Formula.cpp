#include "OstrelDialect/Formula.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

namespace Ostrel {

namespace {

constexpr std::size_t MaximumLength = 65536;
constexpr int MaximumDepth = 256;

enum Code : std::uint8_t {
    Push,
    Name,
    Negate,
    Complement,
    Power,
    Multiply,
    Divide,
    Remainder,
    Add,
    Subtract,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    Equal,
    NotEqual,
    BitAnd,
    BitXor,
    BitOr,
    /// Makes 1 of anything but 0.
    Truth,
    Jump,
    /// Takes the condition and jumps when it is 0.
    JumpIfZero,
    /// Takes the left side; when it decides, puts 0 or 1 in its place and jumps.
    AndJump,
    OrJump,
    /// Functions follow.
    Sin,
    Cos,
    Tan,
    Asin,
    Acos,
    Atan,
    Atan2,
    Rad,
    Deg,
    Min,
    Max,
    Clamp,
    Exp,
    Ln,
    Log,
    Sqrt,
    Abs,
    Neg,
    Sgn,
    Frac,
    Trunc,
    Floor,
    Ceil,
    Round,
};

/// Up to eight ASCII letters in upper case as one number, 0 for a longer word.
constexpr std::uint64_t wordKey(std::string_view word) {
    if (word.size() > 8)
        return 0;
    std::uint64_t key = 0;
    for (const char c : word)
        key = key << 8 | static_cast<unsigned char>(asciiUpper(c));
    return key;
}

struct Function {
    std::uint64_t key;
    Code code;
    std::uint8_t leastArguments;
    std::uint8_t mostArguments;
};

constexpr Function Functions[] = {
    {wordKey("round"), Round, 1, 2},
    {wordKey("floor"), Floor, 1, 1},
    {wordKey("ceil"), Ceil, 1, 1},
    {wordKey("min"), Min, 2, 2},
    {wordKey("max"), Max, 2, 2},
    {wordKey("clamp"), Clamp, 3, 3},
    {wordKey("abs"), Abs, 1, 1},
    {wordKey("sin"), Sin, 1, 1},
    {wordKey("cos"), Cos, 1, 1},
    {wordKey("tan"), Tan, 1, 1},
    {wordKey("asin"), Asin, 1, 1},
    {wordKey("acos"), Acos, 1, 1},
    {wordKey("atan"), Atan, 1, 1},
    {wordKey("atan2"), Atan2, 2, 2},
    {wordKey("rad"), Rad, 1, 1},
    {wordKey("deg"), Deg, 1, 1},
    {wordKey("exp"), Exp, 1, 1},
    {wordKey("ln"), Ln, 1, 1},
    {wordKey("log"), Log, 1, 1},
    {wordKey("sqrt"), Sqrt, 1, 1},
    {wordKey("neg"), Neg, 1, 1},
    {wordKey("sgn"), Sgn, 1, 1},
    {wordKey("frac"), Frac, 1, 1},
    {wordKey("trunc"), Trunc, 1, 1},
};

const Function* findFunction(std::string_view word) {
    const auto key = wordKey(word);
    const auto* const found = std::ranges::find(Functions, key, &Function::key);
    return key == 0 || found == std::end(Functions) ? nullptr : found;
}

constexpr bool isBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}

/// One flag for each byte: whether it may stand in a number or a name.
constexpr auto WordCharacters = [] {
    std::array<bool, 256> table{};
    for (int c = 0x21; c < 256; ++c)
        table[static_cast<std::size_t>(c)] = c != 0x7f;
    for (const char c : std::string_view("+-*/%<>=!&^|~?:(),"))
        table[static_cast<unsigned char>(c)] = false;
    return table;
}();

/// `digits` in a base of at most 16; absent when one of them does not belong to it.
std::optional<double> parseDigits(std::string_view digits, int base) {
    double value = 0;
    for (const char c : digits) {
        const char upper = asciiUpper(c);
        const int digit = isASCIIDigit(c) ? c - '0' : upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : base;
        if (digit >= base)
            return std::nullopt;
        value = value * base + digit;
    }
    return digits.empty() ? std::nullopt : std::optional(value);
}

std::optional<double> parseLiteral(std::string_view word) {
    if (word.size() > 2 && word[0] == '0') {
        const int base = word[1] == 'x' ? 16 : word[1] == 'b' ? 2 : word[1] == 'o' ? 8 : 0;
        if (base != 0)
            return parseDigits(word.substr(2), base);
    }
    if (!std::ranges::all_of(word, [](char c) { return isASCIIDigit(c) || c == '.'; }))
        return std::nullopt;
    const auto number = parseNumberPrefix(word);
    return number.length == word.size() && !word.empty() ? std::optional(number.value) : std::nullopt;
}

/// Binary operators by how tightly they bind; `**` and `? :` have functions of their own.
struct Operator {
    Code code = Push;
    std::uint8_t level = 0;
    std::uint8_t length = 0;
};

/// What stands in `Operator::level` for `||`, the loosest binary operator.
constexpr int LoosestLevel = 1;

Operator binaryOperator(char first, char second) {
    switch (first) {
    case '|':
        return second == '|' ? Operator{OrJump, 1, 2} : Operator{BitOr, 3, 1};
    case '&':
        return second == '&' ? Operator{AndJump, 2, 2} : Operator{BitAnd, 5, 1};
    case '^':
        return {BitXor, 4, 1};
    case '=':
        return {Equal, 6, static_cast<std::uint8_t>(second == '=' ? 2 : 1)};
    case '!':
        return second == '=' ? Operator{NotEqual, 6, 2} : Operator{};
    case '<':
        if (second == '>')
            return {NotEqual, 6, 2};
        return second == '=' ? Operator{LessOrEqual, 7, 2} : Operator{Less, 7, 1};
    case '>':
        return second == '=' ? Operator{GreaterOrEqual, 7, 2} : Operator{Greater, 7, 1};
    case '+':
        return {Add, 8, 1};
    case '-':
        return {Subtract, 8, 1};
    case '*':
        return second == '*' ? Operator{} : Operator{Multiply, 9, 1};
    case '/':
        return {Divide, 9, 1};
    case '%':
        return {Remainder, 9, 1};
    default:
        return {};
    }
}

/// Recursive descent that writes instructions for a stack. Each rule returns false when the text is no formula.
class Compiler {
public:
    Compiler(std::string_view text, const FormulaNames* names, std::vector<Formula::Instruction>& code)
        : at_(text.data())
        , end_(text.data() + text.size())
        , names_(names)
        , code_(code) { }

    bool run() { return choice() && current() == '\0' && at_ == end_; }
    std::uint32_t stackSize() const { return static_cast<std::uint32_t>(mostOnStack_); }
    bool hasNames() const { return hasNames_; }

private:
    /// The next character that is not blank, or 0 at the end.
    char current() {
        while (at_ != end_ && isBlank(*at_))
            ++at_;
        return at_ != end_ ? *at_ : '\0';
    }
    char following() const { return end_ - at_ > 1 ? at_[1] : '\0'; }

    bool take(char c) {
        if (current() != c || at_ == end_)
            return false;
        ++at_;
        return true;
    }

    std::size_t emit(Code code, int stackChange, std::uint32_t operand = 0, double number = 0) {
        onStack_ += stackChange;
        mostOnStack_ = std::max(mostOnStack_, onStack_);
        code_.push_back({number, operand, code});
        return code_.size() - 1;
    }
    void land(std::size_t jump) { code_[jump].operand = static_cast<std::uint32_t>(code_.size()); }

    bool choice() {
        if (++depth_ > MaximumDepth || !binary(LoosestLevel))
            return false;
        if (current() == '?') {
            ++at_;
            const auto toSecond = emit(JumpIfZero, -1);
            if (!choice() || !take(':'))
                return false;
            const auto toEnd = emit(Jump, -1);
            land(toSecond);
            if (!choice())
                return false;
            land(toEnd);
        }
        --depth_;
        return true;
    }

    bool binary(int leastLevel) {
        if (!power())
            return false;
        for (;;) {
            const auto found = nextOperator();
            if (found.level < leastLevel || found.length == 0)
                return true;
            at_ += found.length;
            const bool isLogic = found.code == AndJump || found.code == OrJump;
            const auto jump = isLogic ? emit(found.code, -1) : 0;
            if (!binary(found.level + 1))
                return false;
            if (isLogic) {
                emit(Truth, 0);
                land(jump);
            } else {
                emit(found.code, -1);
            }
        }
    }

    /// Each level of operators that is open asks for the same one.
    Operator nextOperator() {
        if (operatorAt_ != at_) {
            const char c = current();
            operator_ = binaryOperator(c, following());
            operatorAt_ = at_;
        }
        return operator_;
    }

    bool power() {
        if (!unary())
            return false;
        if (current() != '*' || following() != '*')
            return true;
        at_ += 2;
        if (++depth_ > MaximumDepth || !power())
            return false;
        --depth_;
        emit(Power, -1);
        return true;
    }

    bool unary() {
        const char c = current();
        if (c == '+') {
            ++at_;
            return nested(&Compiler::unary);
        }
        if (c != '-' && c != '~')
            return primary();
        ++at_;
        const auto operandAt = code_.size();
        if (!nested(&Compiler::unary))
            return false;
        if (c == '~')
            emit(Complement, 0);
        else if (code_.size() == operandAt + 1 && code_.back().code == Push)
            code_.back().number = -code_.back().number;
        else
            emit(Negate, 0);
        return true;
    }

    bool nested(bool (Compiler::*rule)()) {
        if (++depth_ > MaximumDepth || !(this->*rule)())
            return false;
        --depth_;
        return true;
    }

    bool primary() {
        if (take('('))
            return choice() && take(')');
        const char* const begin = at_;
        while (at_ != end_ && WordCharacters[static_cast<unsigned char>(*at_)])
            ++at_;
        const std::string_view word(begin, static_cast<std::size_t>(at_ - begin));
        if (word.empty())
            return false;
        if (isASCIIDigit(word[0]) || word[0] == '.') {
            if (const auto number = parseLiteral(word)) {
                emit(Push, 1, 0, *number);
                return true;
            }
        }
        if (current() == '(' && at_ != end_)
            return call(word);
        return constant(word) || name(word);
    }

    bool call(std::string_view word) {
        const auto* const function = findFunction(word);
        if (!function)
            return false;
        ++at_;
        int count = 0;
        do {
            if (!choice())
                return false;
            ++count;
        } while (take(',') && count < function->mostArguments);
        if (!take(')') || count < function->leastArguments)
            return false;
        emit(function->code, 1 - count, static_cast<std::uint32_t>(count));
        return true;
    }

    bool constant(std::string_view word) {
        const auto key = wordKey(word);
        if (key == wordKey("PI"))
            emit(Push, 1, 0, std::numbers::pi);
        else if (key == wordKey("E"))
            emit(Push, 1, 0, std::numbers::e);
        else
            return false;
        return true;
    }

    bool name(std::string_view word) {
        const auto place = names_ ? names_->place(word) : std::nullopt;
        if (!place || *place > std::numeric_limits<std::uint32_t>::max())
            return false;
        hasNames_ = true;
        emit(Name, 1, static_cast<std::uint32_t>(*place));
        return true;
    }

    const char* at_;
    const char* end_;
    const FormulaNames* names_;
    std::vector<Formula::Instruction>& code_;
    const char* operatorAt_ = nullptr;
    Operator operator_;
    int depth_ = 0;
    int onStack_ = 0;
    int mostOnStack_ = 0;
    bool hasNames_ = false;
};

std::optional<std::int64_t> bits(double number) {
    // The upper bound is no double below 2^63.
    if (!(number >= -9223372036854775808.0 && number < 9223372036854775808.0))
        return std::nullopt;
    return static_cast<std::int64_t>(number);
}

std::optional<double> bitwise(Code code, double left, double right) {
    const auto a = bits(left);
    const auto b = bits(right);
    if (!a || !b)
        return std::nullopt;
    return static_cast<double>(code == BitAnd ? *a & *b : code == BitXor ? *a ^ *b : *a | *b);
}

double rounded(double number, double places) {
    const double scale = std::pow(10.0, std::trunc(places));
    const double scaled = number * scale;
    // Where the scaled number leaves the doubles, the number has no such places.
    if (!std::isfinite(scaled))
        return number;
    return scale == 0 ? 0 : std::round(scaled) / scale;
}

/// Not finite where the argument is out of the function's domain or the result out of range.
double callFunction(Code code, const double* a, std::uint32_t count) {
    switch (code) {
    case Sin:
        return std::sin(a[0]);
    case Cos:
        return std::cos(a[0]);
    case Tan:
        return std::tan(a[0]);
    case Asin:
        return std::asin(a[0]);
    case Acos:
        return std::acos(a[0]);
    case Atan:
        return std::atan(a[0]);
    case Atan2:
        return std::atan2(a[0], a[1]);
    case Rad:
        return a[0] * std::numbers::pi / 180.0;
    case Deg:
        return a[0] * 180.0 / std::numbers::pi;
    case Min:
        return std::min(a[0], a[1]);
    case Max:
        return std::max(a[0], a[1]);
    case Clamp:
        return std::max(a[1], std::min(a[2], a[0]));
    case Exp:
        return std::exp(a[0]);
    case Ln:
        return std::log(a[0]);
    case Log:
        return std::log10(a[0]);
    case Sqrt:
        return std::sqrt(a[0]);
    case Abs:
        return std::abs(a[0]);
    case Neg:
        return -a[0];
    case Sgn:
        return a[0] > 0 ? 1 : a[0] < 0 ? -1 : 0;
    case Frac:
        return a[0] - std::trunc(a[0]);
    case Trunc:
        return std::trunc(a[0]);
    case Floor:
        return std::floor(a[0]);
    case Ceil:
        return std::ceil(a[0]);
    case Round:
        return count == 2 ? rounded(a[0], a[1]) : std::round(a[0]);
    default:
        return 0;
    }
}

std::optional<double> execute(const std::vector<Formula::Instruction>& code, double* stack, const FormulaNames* names) {
    // `top` is the place behind the topmost number.
    double* top = stack;
    for (std::size_t at = 0; at < code.size(); ++at) {
        const auto& step = code[at];
        switch (const auto kind = static_cast<Code>(step.code)) {
        case Push:
            *top++ = step.number;
            break;
        case Name:
            *top++ = names ? names->value(step.operand) : 0;
            break;
        case Negate:
            top[-1] = -top[-1];
            break;
        case Complement: {
            const auto whole = bits(top[-1]);
            if (!whole)
                return std::nullopt;
            top[-1] = static_cast<double>(~*whole);
            break;
        }
        case Power:
            --top;
            top[-1] = std::pow(top[-1], *top);
            if (!std::isfinite(top[-1]))
                return std::nullopt;
            break;
        case Multiply:
            --top;
            top[-1] *= *top;
            break;
        case Divide:
            --top;
            if (*top == 0)
                return std::nullopt;
            top[-1] /= *top;
            break;
        case Remainder:
            --top;
            if (*top == 0)
                return std::nullopt;
            top[-1] = std::fmod(top[-1], *top);
            break;
        case Add:
            --top;
            top[-1] += *top;
            break;
        case Subtract:
            --top;
            top[-1] -= *top;
            break;
        case Less:
            --top;
            top[-1] = top[-1] < *top ? 1 : 0;
            break;
        case LessOrEqual:
            --top;
            top[-1] = top[-1] <= *top ? 1 : 0;
            break;
        case Greater:
            --top;
            top[-1] = top[-1] > *top ? 1 : 0;
            break;
        case GreaterOrEqual:
            --top;
            top[-1] = top[-1] >= *top ? 1 : 0;
            break;
        case Equal:
            --top;
            top[-1] = top[-1] == *top ? 1 : 0;
            break;
        case NotEqual:
            --top;
            top[-1] = top[-1] != *top ? 1 : 0;
            break;
        case BitAnd:
        case BitXor:
        case BitOr: {
            --top;
            const auto result = bitwise(kind, top[-1], *top);
            if (!result)
                return std::nullopt;
            top[-1] = *result;
            break;
        }
        case Truth:
            top[-1] = top[-1] != 0 ? 1 : 0;
            break;
        case Jump:
            at = step.operand - 1;
            break;
        case JumpIfZero:
            if (*--top == 0)
                at = step.operand - 1;
            break;
        case AndJump:
            if (*--top == 0) {
                *top++ = 0;
                at = step.operand - 1;
            }
            break;
        case OrJump:
            if (*--top != 0) {
                *top++ = 1;
                at = step.operand - 1;
            }
            break;
        default:
            top -= step.operand;
            *top = callFunction(kind, top, step.operand);
            if (!std::isfinite(*top++))
                return std::nullopt;
            break;
        }
    }
    return std::isfinite(*stack) ? std::optional(*stack) : std::nullopt;
}

} // namespace

std::optional<Formula> Formula::compile(std::string_view text, const FormulaNames* names) {
    if (text.size() > MaximumLength)
        return std::nullopt;
    std::optional<Formula> formula(std::in_place);
    // Few formulas have more instructions than three for every four characters.
    formula->code_.reserve(std::min<std::size_t>(text.size() * 3 / 4 + 2, 256));
    Compiler compiler(text, names, formula->code_);
    if (!compiler.run())
        return std::nullopt;
    formula->stackSize_ = compiler.stackSize();
    formula->isConstant_ = !compiler.hasNames();
    return formula;
}

std::optional<double> Formula::evaluate(const FormulaNames* names) const {
    constexpr std::size_t UsualStack = 32;
    if (stackSize_ <= UsualStack) {
        std::array<double, UsualStack> stack;
        return execute(code_, stack.data(), names);
    }
    std::vector<double> stack(stackSize_);
    return execute(code_, stack.data(), names);
}

} // namespace Ostrel
