#pragma once

#include <array>

// What makes a measure's action run once for each crossing instead of on every update.
namespace Ostrel {

/// Of an action pair that follows a condition.
struct BinaryActionCommitState {
    bool trueCommitted = false;
    bool falseCommitted = false;

    enum class Outcome { none, runTrue, runFalse };
    /// Notes the condition's result and tells which action is to run. With `everyTime` the side that holds always runs.
    Outcome commit(bool result, bool everyTime);
    friend bool operator==(const BinaryActionCommitState&, const BinaryActionCommitState&) = default;
};

/// Of one measure. The state after construction is that of a measure whose actions have not run yet.
struct MeasureActionCommitState {
    static constexpr int NumberedLimit = 8;

    bool equalCommitted = false;
    bool aboveCommitted = false;
    bool belowCommitted = false;
    /// By the number of the option less one.
    std::array<BinaryActionCommitState, NumberedLimit> conditionCommits;
    std::array<BinaryActionCommitState, NumberedLimit> matchCommits;

    friend bool operator==(const MeasureActionCommitState&, const MeasureActionCommitState&) = default;
};

/// Notes the result of a one-sided test in its flag; true when the action is to run.
bool commitCrossing(bool& committed, bool result);

} // namespace Ostrel
