#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// A Perl-compatible pattern by PCRE2, compiled once, JIT where the library has it, with match, depth and heap limits.
/// Text and pattern are UTF-8; bytes of the text that are no UTF-8 match nothing. A match that meets a limit is no
/// match. One object serves one thread at a time.
class PerlRegularExpression {
public:
    /// Where a group matched, in bytes; absent for a group that took no part.
    struct Span {
        std::size_t begin = 0;
        std::size_t end = 0;

        friend bool operator==(const Span&, const Span&) = default;
    };
    using Groups = std::vector<std::optional<Span>>;

    /// Absent when the pattern does not compile; `error` then says why.
    static std::optional<PerlRegularExpression> compile(std::string_view pattern, std::string* error = nullptr);
    PerlRegularExpression(PerlRegularExpression&&) noexcept;
    PerlRegularExpression& operator=(PerlRegularExpression&&) noexcept;
    ~PerlRegularExpression();

    bool matches(std::string_view subject) const;
    /// The first match at or after `from`, group 0 first, one entry for each group of the pattern; absent without one.
    std::optional<Groups> match(std::string_view subject, std::size_t from = 0) const;
    /// Every match in order. After an empty match the next one is not empty or begins a character further on.
    std::vector<Groups> allMatches(std::string_view subject, std::size_t limit = 100000) const;
    /// All matches replaced. `\0` to `\99` in the replacement are groups, of two digits only where the pattern has that
    /// many; an unset or missing group is empty. The result is bounded: what would go beyond stays as it was.
    std::string replaceAll(std::string_view subject, std::string_view replacement) const;

private:
    struct Compiled;
    explicit PerlRegularExpression(std::unique_ptr<Compiled> compiled);
    std::unique_ptr<Compiled> compiled_;
};

} // namespace Ostrel
