#pragma once

#include "OstrelDialect/ActionText.h"
#include "OstrelEngine/Full/ActionHost.h"

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Ostrel {

class EventValues;
class SkinScope;
struct BangRow;

/// Where an action comes from.
struct ActionOrigin {
    /// CURRENTSECTION of its references. Empty for an action from outside the skin.
    std::string section;
    /// `$MouseX$` and its like; null for none.
    std::shared_ptr<const EventValues> events = nullptr;
};

/// Runs action strings of a skin: split once for each text, references resolved in each argument when it runs. Actions
/// run others through updates and commands; nesting, steps and delays are bounded, and what is beyond is dropped and
/// told once.
class FullActions {
public:
    /// Both must outlive this.
    FullActions(ActionHost& host, const SkinScope& scope);
    ~FullActions();

    /// `#V#` in the text are resolved already. True when something was done.
    bool run(std::string_view action, const ActionOrigin& origin);
    /// The same for a text whose `#V#` are resolved now.
    bool runRaw(std::string_view action, const ActionOrigin& origin);
    /// One bang with arguments that are resolved already.
    bool runBang(const BangCall& call, const ActionOrigin& origin);
    /// One bang with arguments in which references may stand.
    bool runRawBang(std::string_view name, const std::vector<std::string>& arguments, const ActionOrigin& origin);
    /// Ends what waits for a `!Delay`.
    void dropDelayed();

    /// While a script runs, bangs that do more than store something wait for its end; calls may nest.
    void scriptWillRun() { ++scriptDepth_; }
    void scriptDidRun();

private:
    using Program = std::vector<ActionTextStep>;
    class Nesting;

    std::shared_ptr<const Program> program(std::string_view action);
    bool runSteps(const std::shared_ptr<const Program>& program, std::size_t first, const ActionOrigin& origin);
    bool runStep(const ActionTextStep& step, const ActionOrigin& origin);
    void runLater(std::shared_ptr<const Program> program, std::size_t next, double milliseconds, ActionOrigin origin);
    bool runRow(const BangRow& row, const BangCall& call, const ActionOrigin& origin);
    bool runForConfig(const BangRow& row, const BangCall& call, const ActionOrigin& origin);
    bool runForSkinGroup(const BangRow& row, const BangCall& call, const ActionOrigin& origin);
    bool mayWrite(std::string_view bang, const std::vector<ActionArgument>& arguments, const ActionOrigin& origin);
    void afterScript(std::function<void()> work);
    bool playSound(const ActionTextStep& step, const ActionOrigin& origin);
    bool open(const ActionTextStep& step, const ActionOrigin& origin);
    std::string programPath(const std::string& target) const;
    std::string resolved(std::string_view text, const ActionOrigin& origin) const;

    ActionHost& host_;
    const SkinScope& scope_;
    std::unordered_map<std::string, std::shared_ptr<const Program>> programs_;
    int depth_ = 0;
    int stepsOfOutermost_ = 0;
    std::size_t delayedCount_ = 0;
    int scriptDepth_ = 0;
    std::deque<std::function<void()>> afterScript_;
    /// Expires when what waits is dropped.
    std::shared_ptr<int> delays_ = std::make_shared<int>();
};

} // namespace Ostrel
