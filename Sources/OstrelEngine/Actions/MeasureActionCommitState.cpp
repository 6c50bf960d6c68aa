#include "OstrelEngine/Actions/MeasureActionCommitState.h"

namespace Ostrel {

BinaryActionCommitState::Outcome BinaryActionCommitState::commit(bool result, bool everyTime) {
    const bool runs = everyTime || !(result ? trueCommitted : falseCommitted);
    trueCommitted = result;
    falseCommitted = !result;
    if (!runs)
        return Outcome::none;
    return result ? Outcome::runTrue : Outcome::runFalse;
}

bool commitCrossing(bool& committed, bool result) {
    const bool runs = result && !committed;
    committed = result;
    return runs;
}

} // namespace Ostrel
