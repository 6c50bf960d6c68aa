#include "OstrelEngine/Measures/Full/LuaPattern.h"

namespace Ostrel {

namespace {

/// Steps between two reports.
constexpr int StepsPerReport = 4096;
constexpr int MaxDepth = 200;

constexpr bool isBetween(unsigned char c, char first, char last) {
    return c >= static_cast<unsigned char>(first) && c <= static_cast<unsigned char>(last);
}

constexpr bool isLower(unsigned char c) {
    return isBetween(c, 'a', 'z');
}

constexpr bool isUpper(unsigned char c) {
    return isBetween(c, 'A', 'Z');
}

constexpr bool isDigit(unsigned char c) {
    return isBetween(c, '0', '9');
}

constexpr bool isAlphanumeric(unsigned char c) {
    return isLower(c) || isUpper(c) || isDigit(c);
}

/// The classes of the C locale.
constexpr bool matchesClass(unsigned char c, char name) {
    bool result = false;
    switch (static_cast<char>(name | 0x20)) {
    case 'a':
        result = isLower(c) || isUpper(c);
        break;
    case 'c':
        result = c < 32 || c == 127;
        break;
    case 'd':
        result = isDigit(c);
        break;
    case 'l':
        result = isLower(c);
        break;
    case 'p':
        result = c > 32 && c < 127 && !isAlphanumeric(c);
        break;
    case 's':
        result = c == ' ' || isBetween(c, '\t', '\r');
        break;
    case 'u':
        result = isUpper(c);
        break;
    case 'w':
        result = isAlphanumeric(c);
        break;
    case 'x':
        result = isDigit(c) || isBetween(c, 'a', 'f') || isBetween(c, 'A', 'F');
        break;
    case 'z':
        result = c == 0;
        break;
    default:
        return c == static_cast<unsigned char>(name);
    }
    return isUpper(static_cast<unsigned char>(name)) ? !result : result;
}

} // namespace

void LuaPattern::step() {
    if (++steps_ < StepsPerReport)
        return;
    steps_ = 0;
    watch_.spend(StepsPerReport);
}

std::optional<std::size_t> LuaPattern::match(std::size_t from) {
    level_ = 0;
    depth_ = 0;
    const auto end = matchHere(from, 0);
    if (end) {
        for (std::size_t i = 0; i < level_; ++i) {
            if (captures_[i].kind == Capture::Kind::Open)
                watch_.fail("unfinished capture");
        }
    }
    return end;
}

LuaPattern::Position LuaPattern::matchHere(std::size_t s, std::size_t p) {
    if (++depth_ > MaxDepth)
        watch_.fail("pattern too complex");
    Position result;
    for (;;) {
        step();
        if (p == pattern_.size()) {
            result = s;
            break;
        }
        const char c = pattern_[p];
        const char next = at(p + 1);
        if (c == '(') {
            result = next == ')' ? openCapture(s, p + 2, Capture::Kind::Position)
                                 : openCapture(s, p + 1, Capture::Kind::Open);
            break;
        }
        if (c == ')') {
            result = closeCapture(s, p + 1);
            break;
        }
        if (c == '$' && p + 1 == pattern_.size()) {
            result = s == subject_.size() ? Position(s) : std::nullopt;
            break;
        }
        if (c == '%' && next == 'b') {
            const auto end = balanced(s, p + 2);
            if (!end)
                break;
            s = *end;
            p += 4;
            continue;
        }
        if (c == '%' && next == 'f') {
            p += 2;
            if (at(p) != '[')
                watch_.fail("missing '[' after '%f' in pattern");
            const auto setEnd = itemEnd(p);
            if (!isFrontier(s, p, setEnd))
                break;
            p = setEnd;
            continue;
        }
        if (c == '%' && isDigit(static_cast<unsigned char>(next))) {
            const auto end = repeated(s, next);
            if (!end)
                break;
            s = *end;
            p += 2;
            continue;
        }
        const auto end = itemEnd(p);
        const char suffix = at(end);
        if (end < pattern_.size() && (suffix == '?' || suffix == '*' || suffix == '+' || suffix == '-')) {
            if (suffix == '?') {
                if (matchesItem(s, p, end)) {
                    if ((result = matchHere(s + 1, end + 1)))
                        break;
                }
                p = end + 1;
                continue;
            }
            if (suffix == '-')
                result = expandLeast(s, p, end);
            else if (suffix == '*')
                result = expandMost(s, p, end);
            else if (matchesItem(s, p, end))
                result = expandMost(s + 1, p, end);
            break;
        }
        if (!matchesItem(s, p, end))
            break;
        ++s;
        p = end;
    }
    --depth_;
    return result;
}

LuaPattern::Position LuaPattern::expandMost(std::size_t s, std::size_t p, std::size_t end) {
    std::size_t count = 0;
    while (matchesItem(s + count, p, end)) {
        ++count;
        step();
    }
    for (;; --count) {
        if (const auto result = matchHere(s + count, end + 1))
            return result;
        if (count == 0)
            return std::nullopt;
    }
}

LuaPattern::Position LuaPattern::expandLeast(std::size_t s, std::size_t p, std::size_t end) {
    for (;; ++s) {
        if (const auto result = matchHere(s, end + 1))
            return result;
        if (!matchesItem(s, p, end))
            return std::nullopt;
    }
}

LuaPattern::Position LuaPattern::openCapture(std::size_t s, std::size_t p, Capture::Kind kind) {
    if (level_ >= MaxCaptures)
        watch_.fail("too many captures");
    captures_[level_++] = {kind, s, 0};
    const auto result = matchHere(s, p);
    if (!result)
        --level_;
    return result;
}

LuaPattern::Position LuaPattern::closeCapture(std::size_t s, std::size_t p) {
    auto index = level_;
    while (index > 0 && captures_[index - 1].kind != Capture::Kind::Open)
        --index;
    if (index == 0)
        watch_.fail("invalid pattern capture");
    auto& closed = captures_[index - 1];
    closed.kind = Capture::Kind::Text;
    closed.length = s - closed.begin;
    const auto result = matchHere(s, p);
    if (!result)
        closed.kind = Capture::Kind::Open;
    return result;
}

LuaPattern::Position LuaPattern::balanced(std::size_t s, std::size_t p) {
    if (p + 1 >= pattern_.size())
        watch_.fail("unbalanced pattern");
    const char open = pattern_[p];
    const char close = pattern_[p + 1];
    if (s >= subject_.size() || subject_[s] != open)
        return std::nullopt;
    std::size_t nesting = 1;
    for (++s; s < subject_.size(); ++s) {
        step();
        if (subject_[s] == close) {
            if (--nesting == 0)
                return s + 1;
        } else if (subject_[s] == open) {
            ++nesting;
        }
    }
    return std::nullopt;
}

LuaPattern::Position LuaPattern::repeated(std::size_t s, char digit) {
    const auto index = static_cast<std::size_t>(digit - '1');
    if (digit == '0' || index >= level_ || captures_[index].kind == Capture::Kind::Open)
        watch_.fail("invalid capture index");
    const auto text = subject_.substr(captures_[index].begin, captures_[index].length);
    // A long capture compared at every place costs more than its one step.
    steps_ += static_cast<int>(text.size() / 64);
    return subject_.substr(s).starts_with(text) ? Position(s + text.size()) : std::nullopt;
}

bool LuaPattern::isFrontier(std::size_t s, std::size_t set, std::size_t setEnd) {
    const auto before = static_cast<unsigned char>(s == 0 ? '\0' : subject_[s - 1]);
    const auto here = static_cast<unsigned char>(s < subject_.size() ? subject_[s] : '\0');
    return !matchesSet(before, set, setEnd) && matchesSet(here, set, setEnd);
}

/// Behind one character, class or set.
std::size_t LuaPattern::itemEnd(std::size_t p) {
    const char c = pattern_[p++];
    if (c == '%') {
        if (p >= pattern_.size())
            watch_.fail("malformed pattern (ends with '%')");
        return p + 1;
    }
    if (c != '[')
        return p;
    if (at(p) == '^')
        ++p;
    // The first character of a set never ends it.
    do {
        step();
        if (p >= pattern_.size())
            watch_.fail("malformed pattern (missing ']')");
        if (pattern_[p++] == '%' && p < pattern_.size())
            ++p;
    } while (at(p) != ']');
    return p + 1;
}

bool LuaPattern::matchesItem(std::size_t s, std::size_t p, std::size_t end) {
    if (s >= subject_.size())
        return false;
    const auto c = static_cast<unsigned char>(subject_[s]);
    switch (pattern_[p]) {
    case '.':
        return true;
    case '%':
        return matchesClass(c, pattern_[p + 1]);
    case '[':
        steps_ += static_cast<int>((end - p) / 8);
        return matchesSet(c, p, end);
    default:
        return static_cast<unsigned char>(pattern_[p]) == c;
    }
}

bool LuaPattern::matchesSet(unsigned char c, std::size_t p, std::size_t setEnd) const {
    const auto last = setEnd - 1;
    bool isIn = true;
    ++p;
    if (pattern_[p] == '^') {
        isIn = false;
        ++p;
    }
    for (; p < last; ++p) {
        if (pattern_[p] == '%') {
            ++p;
            if (matchesClass(c, pattern_[p]))
                return isIn;
        } else if (p + 2 < last && pattern_[p + 1] == '-') {
            if (isBetween(c, pattern_[p], pattern_[p + 2]))
                return isIn;
            p += 2;
        } else if (static_cast<unsigned char>(pattern_[p]) == c) {
            return isIn;
        }
    }
    return !isIn;
}

} // namespace Ostrel
