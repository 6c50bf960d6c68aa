#include "OstrelEngine/Runtime/NumericExpressionLexer.h"

#include "OstrelCore/Text/Numbers.h"

#include <algorithm>
#include <cmath>

namespace Ostrel::NumericExpression {

namespace {

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool isLineEnd(char c) {
    return c == '\n' || c == '\r';
}

/// Rounded once, to the nearest double, however many digits there are.
double octalValue(std::string_view digits) {
    std::uint64_t leading = 0;
    bool isInexact = false;
    int exponent = 0;
    for (const char digit : digits) {
        if (leading < (std::uint64_t{1} << 61U)) {
            leading = leading * 8 + static_cast<std::uint64_t>(digit - '0');
        } else {
            exponent += 3;
            isInexact = isInexact || digit != '0';
        }
    }
    return std::ldexp(static_cast<double>(leading | (isInexact ? 1U : 0U)), exponent);
}

} // namespace

bool Lexer::isAt(std::string_view expected) const {
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (at(position_ + i) != expected[i])
            return false;
    }
    return true;
}

Token Lexer::take(Token token, std::size_t length) {
    position_ += length;
    return token;
}

void Lexer::skipBlanks() {
    while (true) {
        const char c = at(position_);
        if (isLineEnd(c))
            followsLineEnd_ = true;
        if (c == ' ' || c == '\t' || isLineEnd(c))
            ++position_;
        else if (c == '/' && isAt("//"))
            skipLine();
        else if (c == '/' && isAt("/*")) {
            if (!skipBlockComment())
                return;
        } else if (c == '<' && isAt("<!--"))
            skipLine();
        else if (c == '-' && followsLineEnd_ && isAt("-->"))
            skipLine();
        else
            return;
    }
}

void Lexer::skipLine() {
    while (position_ <= text_.size() && !isLineEnd(at(position_)))
        ++position_;
}

bool Lexer::skipBlockComment() {
    const auto end = text_.find("*/", position_ + 2);
    if (end == std::string_view::npos)
        return false;
    const auto comment = text_.substr(position_, end - position_);
    if (comment.find_first_of("\r\n") != std::string_view::npos)
        followsLineEnd_ = true;
    position_ = end + 2;
    return true;
}

Token Lexer::scan() {
    const char c = at(position_);
    switch (c) {
    case '\0':
        return position_ > text_.size() ? Token::End : Token::Invalid;
    case '(':
        return take(Token::OpenParenthesis);
    case ')':
        return take(Token::CloseParenthesis);
    case ':':
        return take(Token::Colon);
    case '?':
        return scanQuestion();
    case '!':
    case '=':
        return scanEquality();
    case '<':
    case '>':
        return scanAngle();
    case '&':
        return scanDoubled(Token::BitAnd, Token::LogicalAnd);
    case '|':
        return scanDoubled(Token::BitOr, Token::LogicalOr);
    case '*':
        return scanDoubled(Token::Times, Token::Power);
    case '+':
        return scanDoubled(Token::Plus, Token::Invalid);
    case '-':
        return scanDoubled(Token::Minus, Token::Invalid);
    case '/':
        // Two of them are a comment, which is gone by now, unless it is one that never ends.
        return isAt("/=") || isAt("/*") ? Token::Invalid : take(Token::Divide);
    case '%':
        return isAt("%=") ? Token::Invalid : take(Token::Remainder);
    default:
        return scanNumber();
    }
}

Token Lexer::scanDoubled(Token single, Token doubled) {
    const std::size_t length = at(position_ + 1) == at(position_) ? 2 : 1;
    if (at(position_ + length) == '=')
        return Token::Invalid;
    return take(length == 2 ? doubled : single, length);
}

Token Lexer::scanQuestion() {
    if (at(position_ + 1) == '?')
        return scanDoubled(Token::Invalid, Token::Coalesce);
    // "?." reaches into an object, except before a digit.
    if (at(position_ + 1) == '.' && !isDigit(at(position_ + 2)))
        return Token::Invalid;
    return take(Token::Question);
}

Token Lexer::scanEquality() {
    const bool isNegated = at(position_) == '!';
    if (at(position_ + 1) != '=')
        return isNegated ? take(Token::Not) : Token::Invalid;
    if (at(position_ + 2) == '=')
        return take(isNegated ? Token::StrictNotEqual : Token::StrictEqual, 3);
    return take(isNegated ? Token::NotEqual : Token::Equal, 2);
}

Token Lexer::scanAngle() {
    const char c = at(position_);
    const bool isLess = c == '<';
    std::size_t length = 1;
    while (at(position_ + length) == c && length < (isLess ? 2U : 3U))
        ++length;
    const bool hasEquals = at(position_ + length) == '=';
    if (length > 1) {
        if (hasEquals)
            return Token::Invalid;
        return take(isLess ? Token::ShiftLeft : length == 2 ? Token::ShiftRight : Token::ShiftRightUnsigned, length);
    }
    if (hasEquals)
        return take(isLess ? Token::LessOrEqual : Token::GreaterOrEqual, 2);
    return take(isLess ? Token::Less : Token::Greater);
}

Token Lexer::scanNumber() {
    // A lone digit is the most common number of all.
    if (isDigit(at(position_)) && !isDigit(at(position_ + 1)) && at(position_ + 1) != '.') {
        number_ = at(position_) - '0';
        return take(Token::Number);
    }
    const auto rest = text_.substr(std::min(position_, text_.size()));
    if (rest.size() > 1 && rest[0] == '0' && isDigit(rest[1])) {
        const auto digits = rest.substr(0, rest.find_first_not_of("0123456789"));
        if (digits.find_first_of("89") == digits.npos) {
            number_ = octalValue(digits);
            return take(Token::Number, digits.size());
        }
    }
    const auto number = parseNumberPrefix(rest);
    if (number.length == 0)
        return Token::Invalid;
    number_ = number.value;
    return take(Token::Number, number.length);
}

} // namespace Ostrel::NumericExpression
