#include "OstrelEngine/Actions/MeasureActions.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelEngine/Actions/ActionRunner.h"
#include "OstrelEngine/Actions/MeasureActionPlan.h"
#include "OstrelEngine/Runtime/LiveExpression.h"
#include "OstrelEngine/Runtime/MeasureTable.h"
#include "OstrelEngine/Runtime/RuntimeExpressions.h"

#include <algorithm>

namespace Ostrel {

namespace {

/// Beyond so many, those that no plan uses any more are let go.
constexpr std::size_t MaxExpressions = 512;

bool holds(MeasureActionPlan::Comparison::Kind kind, double value, double threshold) {
    switch (kind) {
    case MeasureActionPlan::Comparison::Kind::equal:
        return numericAsInt64(value) == numericAsInt64(threshold);
    case MeasureActionPlan::Comparison::Kind::above:
        return value > threshold;
    case MeasureActionPlan::Comparison::Kind::below:
        return value < threshold;
    }
    return false;
}

bool& committed(MeasureActionCommitState& state, MeasureActionPlan::Comparison::Kind kind) {
    switch (kind) {
    case MeasureActionPlan::Comparison::Kind::above:
        return state.aboveCommitted;
    case MeasureActionPlan::Comparison::Kind::below:
        return state.belowCommitted;
    case MeasureActionPlan::Comparison::Kind::equal:
        break;
    }
    return state.equalCommitted;
}

bool isMatched(const MeasureActionPlan::Match& match, const std::string& text, std::uint64_t revision) {
    if (match.revision != revision) {
        match.isMatched = match.pattern.hasMatch(text);
        match.revision = revision;
    }
    return match.isMatched;
}

const ActionProgram* chosenAction(const MeasureActionPlan::Pair& pair, BinaryActionCommitState::Outcome outcome) {
    if (outcome == BinaryActionCommitState::Outcome::none)
        return nullptr;
    return outcome == BinaryActionCommitState::Outcome::runTrue ? pair.trueAction.get() : pair.falseAction.get();
}

} // namespace

MeasureActions::MeasureActions(MeasureTable& measures, RuntimeExpressions& expressions, ActionRunner& runner)
    : measures_(measures)
    , expressions_(expressions)
    , runner_(runner) { }

MeasureActions::~MeasureActions() = default;

void MeasureActions::forgetCommits(std::size_t position) {
    if (position < states_.size())
        states_[position] = {};
}

void MeasureActions::forgetAllCommits() {
    std::ranges::fill(states_, MeasureActionCommitState());
}

void MeasureActions::forceUpdateMeasure(std::size_t position) {
    const bool changed = measures_.update(position);
    executeMeasureActions(position, changed);
}

void MeasureActions::executeMeasureActions(std::size_t position, bool valueChanged) {
    const auto plan = currentPlan(position);
    if (!plan)
        return;
    const ActionRunner::SuppressedPublishing suppressed(runner_);
    const auto& measure = measures_.at(position);
    // A copy until the end: an action that updates this measure again finds the state of before, and what it makes of
    // it is overwritten.
    auto state = states_[position];
    if (valueChanged)
        run(plan->changeAction.get());
    run(plan->updateAction.get());
    executeComparisonActions(*plan, measure.value().numericValue, state);
    executeConditionalActions(*plan, state);
    if (!plan->matches.empty())
        executeRegexActions(*plan, measure, state);
    states_[position] = state;
}

/// Null when the measure has no actions, as most have none.
std::shared_ptr<const MeasureActionPlan> MeasureActions::currentPlan(std::size_t position) {
    if (plans_.size() < measures_.count()) {
        plans_.resize(measures_.count());
        states_.resize(measures_.count());
    }
    const auto& measure = measures_.at(position);
    auto& plan = plans_[position];
    if (!plan || plan->optionsRevision != measure.optionsRevision()) {
        const MeasureActionPlanner planner{[this](std::string_view text) { return program(text); },
            [this](std::string_view text) { return expression(text); }};
        plan = std::make_shared<const MeasureActionPlan>(planner.plan(measure));
    }
    return plan->isEmpty() ? nullptr : plan;
}

std::shared_ptr<const ActionProgram> MeasureActions::program(std::string_view text) {
    auto program = runner_.program(text);
    return program->empty() ? nullptr : program;
}

std::shared_ptr<LiveExpression> MeasureActions::expression(std::string_view text) {
    if (liveExpressions_.size() >= MaxExpressions)
        std::erase_if(liveExpressions_, [](const auto& entry) { return entry.second.expired(); });
    auto& known = liveExpressions_[std::string(text)];
    auto expression = known.lock();
    if (!expression) {
        expression = std::make_shared<LiveExpression>(text, measures_);
        known = expression;
    }
    return expression;
}

void MeasureActions::run(const ActionProgram* program) {
    if (program)
        runner_.execute(*program);
}

void MeasureActions::executeComparisonActions(
    const MeasureActionPlan& plan, double value, MeasureActionCommitState& state) {
    for (const auto& comparison : plan.comparisons) {
        const auto threshold = comparison.threshold->value(expressions_);
        if (!threshold)
            continue;
        if (commitCrossing(committed(state, comparison.kind), holds(comparison.kind, value, *threshold)))
            run(comparison.action.get());
    }
}

void MeasureActions::executeConditionalActions(const MeasureActionPlan& plan, MeasureActionCommitState& state) {
    if (plan.conditions.empty())
        return;
    const bool everyTime = expressions_.isSwitchedOn(plan.conditionMode);
    for (const auto& condition : plan.conditions) {
        if (const auto value = condition.expression->value(expressions_))
            run(chosenAction(condition, state.conditionCommits[condition.index].commit(*value != 0, everyTime)));
    }
}

void MeasureActions::executeRegexActions(
    const MeasureActionPlan& plan, const BaseMeasure& measure, MeasureActionCommitState& state) {
    const bool everyTime = expressions_.isSwitchedOn(plan.matchMode);
    // The text of this moment for all patterns, whatever the actions make of the measure.
    const auto text = measure.value().stringValue;
    const auto revision = measure.valueRevision();
    for (const auto& match : plan.matches) {
        const bool result = isMatched(match, text, revision);
        run(chosenAction(match, state.matchCommits[match.index].commit(result, everyTime)));
    }
}

} // namespace Ostrel
