#pragma once

#include "OstrelDialect/PerlRegularExpression.h"
#include "OstrelEngine/Measures/MeasureValue.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// The pairs of the option `Substitute`, each applied to the result of the one before. An empty pattern replaces the
/// empty text. A pattern that does not compile is skipped, and so is a pair whose result would be longer than a
/// mebibyte.
class SubstituteChain final : public TextRule {
public:
    enum class Patterns { Plain, RegularExpressions };

    /// Null when the option holds no pair. The patterns that do not compile are added to `errors`.
    static std::shared_ptr<const SubstituteChain> create(
        std::string_view option, Patterns patterns, std::vector<std::string>& errors);

    std::string apply(std::string_view text) const override;

private:
    struct Pair {
        std::string pattern;
        std::string replacement;
        /// Absent for a plain pattern, and for the empty one.
        std::optional<PerlRegularExpression> expression;
    };

    static std::vector<Pair> parse(std::string_view option);
    static std::optional<std::string> applyPair(const Pair& pair, std::string_view text);

    std::vector<Pair> pairs_;
};

} // namespace Ostrel
