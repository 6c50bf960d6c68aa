#include "OstrelEngine/Actions/MeasureActionCommitState.h"

#include <gtest/gtest.h>

namespace Ostrel {

namespace {

/// One letter for each result: "T" or "F" for the action that ran, "-" for none.
std::string outcomes(std::initializer_list<bool> results, bool everyTime) {
    BinaryActionCommitState state;
    std::string text;
    for (const bool result : results) {
        const auto outcome = state.commit(result, everyTime);
        using Outcome = BinaryActionCommitState::Outcome;
        text += outcome == Outcome::none ? '-' : outcome == Outcome::runTrue ? 'T' : 'F';
    }
    return text;
}

} // namespace

TEST(MeasureActionCommitState, runsEachSideOfAPairOnceForEachChange) {
    EXPECT_EQ(outcomes({true, true, false, false, true}, false), "T-F-T");
    EXPECT_EQ(outcomes({false, false, true}, false), "F-T");
    EXPECT_EQ(outcomes({true, true, false, false}, true), "TTFF");
}

TEST(MeasureActionCommitState, runsACrossingOnceUntilItIsLeft) {
    bool committed = false;
    std::string text;
    for (const bool above : {true, true, false, false, true})
        text += commitCrossing(committed, above) ? 'R' : '-';
    EXPECT_EQ(text, "R---R");
}

} // namespace Ostrel
