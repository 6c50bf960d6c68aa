#include "OstrelEngine/Actions/MeasureActionPlan.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Actions/MeasureActionCommitState.h"
#include "OstrelEngine/Measures/MeasureProtocol.h"

namespace Ostrel {

namespace {

using Program = MeasureActionPlan::Program;

/// Reads the options of one measure.
class PlanReader {
public:
    PlanReader(const MeasureActionPlanner& planner, const Options& options)
        : planner_(planner)
        , options_(options) { }

    /// Null when the option is missing, blank, or holds nothing that does anything.
    Program action(const std::string& key) const {
        const auto* text = options_.find(key);
        if (!text || trimmed(*text).empty())
            return nullptr;
        return planner_.program(*text);
    }

    void readComparison(
        MeasureActionPlan& plan, MeasureActionPlan::Comparison::Kind kind, const std::string& name) const {
        const auto* threshold = options_.find(name + "Value");
        auto program = action(name + "Action");
        if (threshold && program)
            plan.comparisons.push_back({kind, planner_.expression(*threshold), std::move(program)});
    }

    /// Calls `add` with the text and the actions of each numbered option that has any; the first has no number.
    template <typename Add>
    void forEachNumbered(
        const std::string& key, const std::string& trueKey, const std::string& falseKey, const Add& add) const {
        for (std::size_t i = 0; i < MeasureActionCommitState::NumberedLimit; ++i) {
            const auto suffix = i == 0 ? std::string() : formatInteger(static_cast<std::int64_t>(i) + 1);
            const auto* text = options_.find(key + suffix);
            if (!text || text->empty())
                continue;
            MeasureActionPlan::Pair pair{i, action(trueKey + suffix), action(falseKey + suffix)};
            if (pair.trueAction || pair.falseAction)
                add(*text, std::move(pair));
        }
    }

    std::optional<std::string> text(const CaseKey& key) const {
        const auto* text = options_.find(key);
        return text ? std::optional(*text) : std::nullopt;
    }

private:
    const MeasureActionPlanner& planner_;
    const Options& options_;
};

} // namespace

MeasureActionPlan MeasureActionPlanner::plan(const BaseMeasure& measure) const {
    using Kind = MeasureActionPlan::Comparison::Kind;
    using Pair = MeasureActionPlan::Pair;
    const PlanReader reader(*this, measure.options());
    MeasureActionPlan plan;
    plan.optionsRevision = measure.optionsRevision();
    plan.changeAction = reader.action("OnChangeAction");
    plan.updateAction = reader.action("OnUpdateAction");
    reader.readComparison(plan, Kind::equal, "IfEqual");
    reader.readComparison(plan, Kind::above, "IfAbove");
    reader.readComparison(plan, Kind::below, "IfBelow");
    reader.forEachNumbered("IfCondition", "IfTrueAction", "IfFalseAction", [&](const std::string& text, Pair pair) {
        plan.conditions.push_back({std::move(pair), expression(text)});
    });
    reader.forEachNumbered("IfMatch", "IfMatchAction", "IfNotMatchAction", [&](const std::string& text, Pair pair) {
        if (auto pattern = RegularExpression::compile(text))
            plan.matches.push_back({std::move(pair), std::move(*pattern), std::nullopt, false});
    });
    plan.conditionMode = reader.text("IfConditionMode"_key);
    plan.matchMode = reader.text("IfMatchMode"_key);
    return plan;
}

} // namespace Ostrel
