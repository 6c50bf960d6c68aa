#pragma once

#include "OstrelCore/Text/RegularExpression.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// The option `Substitute`: pairs of pattern and replacement that a measure's text goes through.
class Substitution {
public:
    enum class Mode { Plain, RegularExpression };

    /// Reads `"a":"b","c":"d"`; pieces without double quotes are skipped. Null when there is no pair.
    static std::unique_ptr<Substitution> create(std::string_view text, Mode mode);

    /// What the first pair that changes the text makes of it; later pairs do not see that. The text itself when none
    /// changes it. Lives until the next call; the same text again is not worked on anew.
    const std::string& apply(std::string_view text);

private:
    struct Pair {
        std::string pattern;
        std::string replacement;
        /// In regular-expression mode only; absent for a pattern that does not compile, whose pair never acts.
        std::optional<RegularExpression> expression;
    };

    Substitution(std::vector<Pair> pairs, Mode mode);
    static std::vector<Pair> parse(std::string_view text);
    std::optional<std::string> applyPair(const Pair& pair, std::string_view text) const;
    std::string firstChange(std::string_view text) const;

    std::vector<Pair> pairs_;
    Mode mode_;
    std::optional<std::string> lastInput_;
    std::string lastOutput_;
};

} // namespace Ostrel
