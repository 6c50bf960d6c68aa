#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace Ostrel {

/// The arithmetic of formulas: + - * / % with unary signs, parentheses and fifteen functions. Works on the text itself,
/// without a tree, and allocates nothing.
///
///     expression := term { ("+" | "-") term }
///     term       := factor { ("*" | "/" | "%") factor }
///     factor     := ("+" | "-") factor | function | "(" expression ")" | number
///     function   := letters "(" [expression { "," expression }] ")"
///     number     := digits with at most one point [("e" | "E") ["+" | "-"] digits]
class ExpressionParser {
public:
    /// Parentheses and function calls nest this deep; an expression that goes further is invalid.
    static constexpr int MaximumDepth = 500;

    /// The text must outlive the parser.
    explicit ExpressionParser(std::string_view text)
        : text_(text) { }

    /// The value of the whole text; absent when it is invalid. May be infinite or NaN.
    std::optional<double> parse();

private:
    /// An optional number that is passed in two registers; `std::optional` would go through memory at every return,
    /// which took half of the time.
    struct Result {
        double value = 0;
        bool isValid = false;

        explicit operator bool() const { return isValid; }
    };

    /// More arguments than any function uses are counted, not kept.
    struct Arguments {
        std::array<double, 3> values{};
        std::size_t count = 0;
    };

    Result parseExpression();
    Result parseTerm();
    Result parseFactor();
    Result parseUnsigned();
    Result parseParenthesized();
    Result parseCall();
    Result tryParseFunction();
    std::optional<Arguments> parseArguments();
    Result parseNumber();

    std::string_view takeLetters();
    bool skipBlank();
    void skipMarks();
    bool isAtEnd() const { return index_ == text_.size(); }
    /// NUL, which means nothing in an expression, at the end.
    char peek() const { return isAtEnd() ? '\0' : text_[index_]; }
    void skipWhitespace() {
        // Most characters are seen at once to be none; bytes beyond ASCII are negative here.
        while (static_cast<signed char>(peek()) <= ' ' && !isAtEnd() && skipBlank()) { }
    }
    bool consume(char c) {
        const bool found = peek() == c;
        index_ += found ? 1 : 0;
        return found;
    }

    std::string_view text_;
    std::size_t index_ = 0;
    int depth_ = 0;
};

} // namespace Ostrel
