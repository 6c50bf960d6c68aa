#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// A regular expression of ICU's dialect over UTF-8 text, compiled once. A search that takes too much time or memory,
/// as a skin's pattern may, ends as if nothing had matched.
class RegularExpression {
public:
    /// Absent when the pattern does not compile; the empty one does not either.
    static std::optional<RegularExpression> compile(std::string_view pattern);
    RegularExpression(RegularExpression&&) noexcept;
    RegularExpression& operator=(RegularExpression&&) noexcept;
    ~RegularExpression();

    /// The whole match and its groups, as views into the text; a group that took no part is a null view.
    using Match = std::vector<std::string_view>;
    /// Whether it is found anywhere in the text.
    bool hasMatch(std::string_view text) const;
    /// All matches from left to right.
    std::vector<Match> matches(std::string_view text) const;

    /// Every match replaced. In the template `$1` is a group (empty when there is none of that number), a backslash
    /// makes the next character literal. Absent when the result would be longer than `maximumLength`.
    std::optional<std::string> replacingMatches(
        std::string_view text, std::string_view replacementTemplate, std::size_t maximumLength) const;

private:
    struct State;
    explicit RegularExpression(std::unique_ptr<State> state);

    std::unique_ptr<State> state_;
};

} // namespace Ostrel
