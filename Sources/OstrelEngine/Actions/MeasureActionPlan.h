#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelCore/Text/RegularExpression.h"
#include "OstrelEngine/Actions/ActionProgram.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

class BaseMeasure;
class LiveExpression;
class RuntimeExpressions;

/// The action options of a measure, parsed and compiled. Immutable but for what is remembered of evaluations, so that a
/// plan that runs stays as it was while its own actions change the options.
struct MeasureActionPlan {
    using Program = std::shared_ptr<const ActionProgram>;
    using Expression = std::shared_ptr<LiveExpression>;

    struct Comparison {
        enum class Kind { equal, above, below };

        Kind kind = Kind::equal;
        Expression threshold;
        Program action;
    };
    /// The two sides may be null.
    struct Pair {
        /// From 0.
        std::size_t index = 0;
        Program trueAction;
        Program falseAction;
    };
    struct Condition : Pair {
        Expression expression;
    };
    struct Match : Pair {
        RegularExpression pattern;
        /// Of the text that was matched last, and what came of it.
        mutable std::optional<std::uint64_t> revision;
        mutable bool isMatched = false;
    };

    std::uint64_t optionsRevision = 0;
    Program changeAction;
    Program updateAction;
    std::vector<Comparison> comparisons;
    std::vector<Condition> conditions;
    std::vector<Match> matches;
    /// As written; absent when there is nothing that it could apply to.
    std::optional<std::string> conditionMode;
    std::optional<std::string> matchMode;

    bool isEmpty() const {
        return !changeAction && !updateAction && comparisons.empty() && conditions.empty() && matches.empty();
    }
};

/// Makes a plan of a measure's options as they stand.
struct MeasureActionPlanner {
    std::function<MeasureActionPlan::Program(std::string_view)> program;
    std::function<MeasureActionPlan::Expression(std::string_view)> expression;

    MeasureActionPlan plan(const BaseMeasure& measure) const;
};

} // namespace Ostrel
