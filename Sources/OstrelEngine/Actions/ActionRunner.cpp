#include "OstrelEngine/Actions/ActionRunner.h"

#include "OstrelEngine/Actions/BangOperations.h"

namespace Ostrel {

namespace {

/// Each run takes some frames of the stack.
constexpr int MaxDepth = 250;
/// Two nested runs for each run would take for ever at that depth.
constexpr int MaxNestedRuns = 20000;

} // namespace

/// One run of actions, counted while it lives.
class ActionRunner::Nesting {
public:
    explicit Nesting(ActionRunner& runner)
        : runner_(runner) {
        if (runner_.depth_++ == 0)
            runner_.nestedRuns_ = 0;
        ++runner_.nestedRuns_;
    }
    ~Nesting() { --runner_.depth_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

    bool isWithinLimits() const { return runner_.depth_ <= MaxDepth && runner_.nestedRuns_ <= MaxNestedRuns; }

private:
    ActionRunner& runner_;
};

bool ActionRunner::executeActionString(std::string_view action) {
    if (action.empty())
        return false;
    const auto kept = program(action);
    return execute(*kept);
}

bool ActionRunner::execute(const ActionProgram& program) {
    if (program.empty())
        return false;
    const Nesting nesting(*this);
    return nesting.isWithinLimits() && run(program);
}

bool ActionRunner::run(const ActionProgram& program) {
    ActionFlags flags;
    for (const auto& step : program) {
        if (step.bang)
            flags = flags.after(step.bang->effect, operations_.perform(step));
        else if (operations_.openExternalTarget(step.words.front()))
            flags.handled = true;
    }
    if (flags.redraw && suppressPublishDepth_ == 0)
        operations_.publishNow();
    return flags.redraw || flags.handled;
}

} // namespace Ostrel
