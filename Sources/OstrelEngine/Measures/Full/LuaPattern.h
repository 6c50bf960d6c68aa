#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace Ostrel {

/// Hears what a match costs; both may throw.
class PatternWatch {
public:
    virtual ~PatternWatch() = default;
    /// So many steps of a match were taken.
    virtual void spend(long long steps) = 0;
    [[noreturn]] virtual void fail(const char* message) = 0;
};

/// Matches the patterns of Lua 5.1 (Reference Manual, 5.4.1). The library's own matcher can run for hours within one
/// instruction and recurses as deep as a pattern is long; this one counts its steps and its depth.
class LuaPattern {
public:
    struct Capture {
        enum class Kind { Open, Text, Position };
        Kind kind = Kind::Open;
        std::size_t begin = 0;
        std::size_t length = 0;
    };

    /// `pattern` without a leading anchor. The texts and the watch outlive the object.
    LuaPattern(std::string_view subject, std::string_view pattern, PatternWatch& watch)
        : subject_(subject)
        , pattern_(pattern)
        , watch_(watch) { }

    /// The end of the match that begins at `from`; absent when there is none there.
    std::optional<std::size_t> match(std::size_t from);
    /// Of the last match.
    std::size_t captureCount() const { return level_; }
    const Capture& capture(std::size_t index) const { return captures_[index]; }

private:
    static constexpr std::size_t MaxCaptures = 32;
    using Position = std::optional<std::size_t>;

    Position matchHere(std::size_t s, std::size_t p);
    Position expandMost(std::size_t s, std::size_t p, std::size_t itemEnd);
    Position expandLeast(std::size_t s, std::size_t p, std::size_t itemEnd);
    Position openCapture(std::size_t s, std::size_t p, Capture::Kind kind);
    Position closeCapture(std::size_t s, std::size_t p);
    Position balanced(std::size_t s, std::size_t p);
    Position repeated(std::size_t s, char digit);
    bool isFrontier(std::size_t s, std::size_t set, std::size_t setEnd);
    std::size_t itemEnd(std::size_t p);
    bool matchesItem(std::size_t s, std::size_t p, std::size_t itemEnd);
    bool matchesSet(unsigned char c, std::size_t p, std::size_t setEnd) const;
    char at(std::size_t p) const { return p < pattern_.size() ? pattern_[p] : '\0'; }
    void step();

    std::string_view subject_;
    std::string_view pattern_;
    PatternWatch& watch_;
    std::array<Capture, MaxCaptures> captures_;
    std::size_t level_ = 0;
    int depth_ = 0;
    int steps_ = 0;
};

} // namespace Ostrel
