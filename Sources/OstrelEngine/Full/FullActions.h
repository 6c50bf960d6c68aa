#pragma once

#include "OstrelDialect/ActionText.h"
#include "OstrelDialect/References.h"
#include "OstrelEngine/Full/ActionHost.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Ostrel {

class EventValues;
class SkinScope;

/// Where an action comes from.
struct ActionOrigin {
    /// CURRENTSECTION of its references. Empty for an action from outside the skin.
    std::string_view section;
    /// `$MouseX$` and its like; null for none.
    const EventValues* events = nullptr;
};

/// Runs action strings of a skin: split once for each text, references resolved in each argument when it runs. Actions
/// run others through updates and commands; nesting, steps and delays are bounded, and what is beyond is dropped and
/// told once.
class FullActions {
public:
    /// Both must outlive this.
    FullActions(ActionHost& host, const SkinScope& scope);
    ~FullActions();

    /// `#V#` are resolved in the text already. True when something was done.
    bool run(std::string_view action, const ActionOrigin& origin);
    /// One bang with arguments that are resolved already.
    bool runBang(const BangCall& call, const ActionOrigin& origin);
    /// Ends what waits for a `!Delay`.
    void dropDelayed();

private:
    struct Program;
    class Nesting;
    struct Delayed;

    std::shared_ptr<const Program> program(std::string_view action);
    bool runSteps(const std::shared_ptr<const Program>& program, std::size_t first, const ActionOrigin& origin);
    void runLater(
        std::shared_ptr<const Program> program, std::size_t next, double milliseconds, const ActionOrigin& origin);
    bool openTarget(const std::vector<std::string>& words, std::string_view section);

    ActionHost& host_;
    const SkinScope& scope_;
    std::unordered_map<std::string, std::shared_ptr<const Program>> programs_;
    int depth_ = 0;
    int stepsOfOutermost_ = 0;
    std::size_t delayedCount_ = 0;
    std::shared_ptr<int> life_ = std::make_shared<int>();
};

} // namespace Ostrel
