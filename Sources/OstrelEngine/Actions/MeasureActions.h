#pragma once

#include "OstrelEngine/Actions/ActionProgram.h"
#include "OstrelEngine/Actions/MeasureActionCommitState.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Ostrel {

class ActionRunner;
class BaseMeasure;
class LiveExpression;
class MeasureTable;
class RuntimeExpressions;
struct MeasureActionPlan;

/// Runs what the options of a measure ask for after it has been updated: on a change, on every update, when its number
/// crosses a value, when a condition turns, when its text begins or ceases to match.
class MeasureActions {
public:
    /// All must outlive this.
    MeasureActions(MeasureTable& measures, RuntimeExpressions& expressions, ActionRunner& runner);
    ~MeasureActions();

    /// To be called after each update. None of the actions publishes.
    void executeMeasureActions(std::size_t position, bool valueChanged);
    /// Updates the measure, whether it is disabled or paused, and runs its actions.
    void forceUpdateMeasure(std::size_t position);

    /// Conditions that hold will run their actions anew: those of one measure, and of all.
    void forgetCommits(std::size_t position);
    void forgetAllCommits();

private:
    std::shared_ptr<const MeasureActionPlan> currentPlan(std::size_t position);
    std::shared_ptr<const ActionProgram> program(std::string_view text);
    std::shared_ptr<LiveExpression> expression(std::string_view text);
    void run(const ActionProgram* program);

    void executeComparisonActions(const MeasureActionPlan& plan, double value, MeasureActionCommitState& state);
    void executeConditionalActions(const MeasureActionPlan& plan, MeasureActionCommitState& state);
    void executeRegexActions(
        const MeasureActionPlan& plan, const BaseMeasure& measure, MeasureActionCommitState& state);

    MeasureTable& measures_;
    RuntimeExpressions& expressions_;
    ActionRunner& runner_;
    std::vector<std::shared_ptr<const MeasureActionPlan>> plans_;
    std::vector<MeasureActionCommitState> states_;
    /// By text: a skin has few conditions and repeats them often.
    std::unordered_map<std::string, std::weak_ptr<LiveExpression>> liveExpressions_;
};

} // namespace Ostrel
