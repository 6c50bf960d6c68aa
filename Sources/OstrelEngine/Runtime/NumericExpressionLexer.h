#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Ostrel::NumericExpression {

enum class Token : std::uint8_t {
    End,
    /// No token of an expression, or one that cannot lead to a value: assignments, `++`, `=>`, `...`.
    Invalid,
    Number,
    OpenParenthesis,
    CloseParenthesis,
    Question,
    Colon,
    Not,
    Power,
    Coalesce,
    // The binary operators from here on, in the order of `precedence`.
    LogicalOr,
    LogicalAnd,
    BitOr,
    BitAnd,
    Equal,
    NotEqual,
    StrictEqual,
    StrictNotEqual,
    Less,
    Greater,
    LessOrEqual,
    GreaterOrEqual,
    ShiftLeft,
    ShiftRight,
    ShiftRightUnsigned,
    Plus,
    Minus,
    Times,
    Divide,
    Remainder,
};

/// The tokens of the script "(" + text + ")", one at a time. The text must outlive the lexer.
class Lexer {
public:
    explicit Lexer(std::string_view text)
        : text_(text) { }

    /// At first the opening parenthesis that the text is wrapped in.
    Token token() const { return token_; }
    /// Of the current token, when it is a number.
    double number() const { return number_; }
    /// Whether a line end stands between the token before and this one.
    bool followsLineEnd() const { return followsLineEnd_; }

    void advance() {
        followsLineEnd_ = false;
        // Everything that is skipped begins with one of these; most characters do not.
        const char c = at(position_);
        if (c <= ' ' || c == '/' || c == '<' || c == '-')
            skipBlanks();
        token_ = scan();
    }

private:
    char at(std::size_t index) const {
        if (index < text_.size())
            return text_[index];
        return index == text_.size() ? ')' : '\0';
    }
    bool isAt(std::string_view expected) const;
    /// Steps over `length` characters.
    Token take(Token token, std::size_t length = 1);
    void skipBlanks();
    void skipLine();
    /// False when the comment never ends.
    bool skipBlockComment();
    Token scan();
    Token scanNumber();
    /// An operator and its longer forms that begin with the same character.
    Token scanAngle();
    Token scanEquality();
    Token scanQuestion();
    Token scanDoubled(Token single, Token doubled);

    std::string_view text_;
    std::size_t position_ = 0;
    Token token_ = Token::OpenParenthesis;
    double number_ = 0;
    bool followsLineEnd_ = false;
};

} // namespace Ostrel::NumericExpression
