#include "OstrelEngine/Full/FullActions.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/LiteralMarks.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelDialect/PackFolders.h"
#include "OstrelDialect/PackReport.h"
#include "OstrelEngine/Full/ConfigNames.h"
#include "OstrelEngine/Full/FullBangs.h"
#include "OstrelEngine/Full/SkinScope.h"
#include "OstrelEngine/Full/UnresolvedReferences.h"
#include "OstrelPlatform/MainQueue.h"
#include "OstrelPlatform/Platform.h"
#include "OstrelPlatform/Workspace.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Ostrel {

namespace {

constexpr int MaxDepth = 100;
constexpr int MaxSteps = 20000;
constexpr std::size_t MaxDelayed = 1000;
constexpr std::size_t MaxAfterScript = 10000;
/// Texts that are made anew each time must not fill the memory.
constexpr std::size_t MaxPrograms = 2000;
constexpr double ShortestDelay = 16;

constexpr auto InArguments
    = ReferenceKinds::BracketVariables | ReferenceKinds::Sections | ReferenceKinds::Escapes | ReferenceKinds::Marks;

bool isAddress(std::string_view target) {
    return hasPrefixIgnoringCase(target, "HTTP://") || hasPrefixIgnoringCase(target, "HTTPS://")
        || hasPrefixIgnoringCase(target, "MAILTO:");
}

bool exists(const std::string& path) {
    std::error_code failed;
    return std::filesystem::exists(path, failed);
}

bool isProgram(const std::string& path) {
    return access(path.c_str(), X_OK) == 0 && !std::filesystem::is_directory(path);
}

} // namespace

/// Counts nested actions and the steps of the outermost one.
class FullActions::Nesting {
public:
    explicit Nesting(FullActions& actions)
        : actions_(actions) {
        if (actions_.depth_++ == 0)
            actions_.stepsOfOutermost_ = 0;
    }
    ~Nesting() { --actions_.depth_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

    bool isTooDeep() const { return actions_.depth_ > MaxDepth; }

private:
    FullActions& actions_;
};

FullActions::FullActions(ActionHost& host, const SkinScope& scope)
    : host_(host)
    , scope_(scope) { }

FullActions::~FullActions() = default;

std::shared_ptr<const FullActions::Program> FullActions::program(std::string_view action) {
    std::string text(action);
    if (const auto found = programs_.find(text); found != programs_.end())
        return found->second;
    if (programs_.size() >= MaxPrograms)
        programs_.clear();
    auto program = std::make_shared<const Program>(parseActionText(action));
    programs_.emplace(std::move(text), program);
    return program;
}

bool FullActions::run(std::string_view action, const ActionOrigin& origin) {
    return !action.empty() && runSteps(program(action), 0, origin);
}

bool FullActions::runRaw(std::string_view action, const ActionOrigin& origin) {
    return run(scope_.resolveNow(action, origin.section, ReferenceKinds::Signs), origin);
}

bool FullActions::runSteps(
    const std::shared_ptr<const Program>& program, std::size_t first, const ActionOrigin& origin) {
    const Nesting nesting(*this);
    if (nesting.isTooDeep()) {
        host_.log(LogLevel::Error, origin.section, "Actions run each other without end");
        return false;
    }
    bool handled = false;
    for (std::size_t i = first; i < program->size(); ++i) {
        if (++stepsOfOutermost_ > MaxSteps) {
            host_.log(LogLevel::Error, origin.section, "An action has more steps than can be run");
            break;
        }
        const auto& step = (*program)[i];
        if (step.kind == ActionTextStep::Kind::Bang && equalsIgnoringCase(step.name, "Delay")) {
            const auto text = step.arguments.empty() ? std::string() : resolved(step.arguments[0].text, origin);
            runLater(program, i + 1, OptionValues::number(LiteralMarks::dropped(text)).value_or(0), origin);
            return true;
        }
        handled = runStep(step, origin) || handled;
    }
    return handled;
}

bool FullActions::runStep(const ActionTextStep& step, const ActionOrigin& origin) {
    switch (step.kind) {
    case ActionTextStep::Kind::Bang: {
        if (!mayWrite(step.name, step.arguments, origin))
            return true;
        BangCall call{step.name, step.arguments};
        for (auto& argument : call.arguments)
            argument.text = resolved(argument.text, origin);
        return runBang(call, origin);
    }
    case ActionTextStep::Kind::Variable: {
        const auto value = scope_.variable(step.name);
        return value && runRaw(*value, origin);
    }
    case ActionTextStep::Kind::Sound:
        return playSound(step, origin);
    case ActionTextStep::Kind::Open:
        return open(step, origin);
    case ActionTextStep::Kind::Nothing:
        return true;
    }
    return false;
}

void FullActions::runLater(
    std::shared_ptr<const Program> program, std::size_t next, double milliseconds, ActionOrigin origin) {
    if (next >= program->size())
        return;
    if (delayedCount_ >= MaxDelayed) {
        host_.log(LogLevel::Error, origin.section, "Too many actions wait for their delays");
        return;
    }
    ++delayedCount_;
    constexpr double LongestDelay = 1e9;
    const double seconds = std::clamp(milliseconds, ShortestDelay, LongestDelay) / 1000;
    host_.platform().mainQueue.postAfter(seconds,
        [this, alive = std::weak_ptr(delays_), program = std::move(program), next, origin = std::move(origin)] {
            if (alive.expired())
                return;
            --delayedCount_;
            runSteps(program, next, origin);
            host_.actionsDidEnd();
        });
}

void FullActions::dropDelayed() {
    delays_ = std::make_shared<int>();
    delayedCount_ = 0;
}

bool FullActions::runRawBang(
    std::string_view name, const std::vector<std::string>& arguments, const ActionOrigin& origin) {
    while (name.starts_with('!'))
        name.remove_prefix(1);
    if (hasPrefixIgnoringCase(name, "RAINMETER") && !findFullBang(name))
        name.remove_prefix(std::string_view("Rainmeter").size());
    BangCall call{std::string(name), {}};
    for (const auto& argument : arguments)
        call.arguments.push_back({argument, false});
    if (!mayWrite(name, call.arguments, origin))
        return true;
    for (auto& argument : call.arguments)
        argument.text = scope_.resolveNow(argument.text, origin.section, InArguments | ReferenceKinds::Signs);
    return runBang(call, origin);
}

/// A reference that is written into a file instead of its value spoils the file for good.
bool FullActions::mayWrite(
    std::string_view bang, const std::vector<ActionArgument>& arguments, const ActionOrigin& origin) {
    constexpr std::size_t Value = 2;
    if (!equalsIgnoringCase(bang, "WriteKeyValue") || arguments.size() <= Value)
        return true;
    constexpr auto Kinds = ReferenceKinds::Signs | ReferenceKinds::BracketVariables | ReferenceKinds::Sections;
    const auto value = scope_.resolveNow(arguments[Value].text, origin.section, Kinds, origin.events.get());
    if (!leavesReferences(value, scope_, host_.measureNames()))
        return true;
    host_.log(LogLevel::Warning, origin.section,
        "!WriteKeyValue: nothing is written, since this has no value: " + LiteralMarks::dropped(value));
    return false;
}

bool FullActions::runBang(const BangCall& call, const ActionOrigin& origin) {
    const auto* row = findFullBang(call.name);
    if (!row) {
        host_.log(LogLevel::Warning, origin.section, "There is no bang !" + call.name);
        return false;
    }
    if (call.arguments.size() < static_cast<std::size_t>(row->required)) {
        host_.log(LogLevel::Warning, origin.section, "!" + call.name + " needs more arguments");
        return false;
    }
    if (scriptDepth_ > 0 && row->timing == BangRow::Timing::AfterScript) {
        afterScript([this, row, call, origin] { runForConfig(*row, call, origin); });
        return true;
    }
    return runForConfig(*row, call, origin);
}

bool FullActions::runForConfig(const BangRow& row, const BangCall& call, const ActionOrigin& origin) {
    if (row.skinGroup != BangRow::NoConfig)
        return runForSkinGroup(row, call, origin);
    const auto count = call.arguments.size();
    const auto place = row.config == BangRow::OddConfig ? (count % 2 != 0 ? count - 1 : count)
                                                        : static_cast<std::size_t>(row.config);
    if (row.config == BangRow::NoConfig || count <= place)
        return runRow(row, call, origin);
    const auto config = LiteralMarks::dropped(call.arguments[place].text);
    const auto name = trimmed(config);
    BangCall others = call;
    others.arguments.resize(place);
    if (name.empty() || ConfigNames::areSame(name, host_.folders().config))
        return runRow(row, others, origin);
    if (name != "*") {
        auto target = ConfigNames::canonical(host_.folders(), name);
        if (ConfigNames::areSame(target, host_.folders().config))
            return runRow(row, others, origin);
        host_.host().sendBang({BangTarget::Kind::Config, std::move(target)}, others);
        return true;
    }
    host_.host().sendBang({BangTarget::Kind::Others, {}}, others);
    return runRow(row, others, origin);
}

bool FullActions::runForSkinGroup(const BangRow& row, const BangCall& call, const ActionOrigin& origin) {
    BangCall plain{std::string(row.plain), call.arguments};
    const auto place = plain.arguments.begin() + row.skinGroup;
    const auto group = LiteralMarks::dropped(place->text);
    plain.arguments.erase(place);
    if (!row.first.empty())
        plain.arguments.insert(plain.arguments.begin(), {std::string(row.first), false});
    host_.host().sendBang({BangTarget::Kind::SkinGroup, group}, plain);
    return !host_.isInGroup(group) || runRow(row, plain, origin);
}

bool FullActions::runRow(const BangRow& row, const BangCall& call, const ActionOrigin& origin) {
    row.run(host_, BangArguments(call.arguments, host_.measureNames(), origin.section));
    return true;
}

void FullActions::afterScript(std::function<void()> work) {
    if (afterScript_.size() < MaxAfterScript)
        afterScript_.push_back(std::move(work));
    else
        host_.log(LogLevel::Error, {}, "A script runs more bangs than can be done");
}

void FullActions::scriptDidRun() {
    if (--scriptDepth_ > 0)
        return;
    // What runs here may call scripts again, whose bangs then come first.
    auto works = std::exchange(afterScript_, {});
    for (const auto& work : works)
        work();
}

bool FullActions::playSound(const ActionTextStep& step, const ActionOrigin& origin) {
    std::string path;
    if (!step.arguments.empty()) {
        const auto written = LiteralMarks::dropped(resolved(step.arguments[0].text, origin));
        path = written.empty() ? std::string() : host_.folders().absolutePath(written);
    }
    const bool isStop = equalsIgnoringCase(step.name, "PlayStop");
    if (!isStop && path.empty())
        return false;
    host_.host().playSound(isStop ? std::string() : path, equalsIgnoringCase(step.name, "PlayLoop"));
    return true;
}

bool FullActions::open(const ActionTextStep& step, const ActionOrigin& origin) {
    std::vector<std::string> arguments;
    for (const auto& argument : step.arguments)
        arguments.push_back(LiteralMarks::dropped(resolved(argument.text, origin)));
    // "[M]" alone is what the measure says, "[&M]" too.
    const auto value = arguments.empty() ? scope_.section(step.name, std::nullopt) : std::nullopt;
    auto target = value ? *value : LiteralMarks::dropped(resolved(step.name, origin));
    if (target.empty())
        return false;
    auto* const workspace = host_.platform().workspace;
    if (isAddress(target))
        return workspace && workspace->openURL(target);
    if (!arguments.empty() && !step.text.starts_with('"') && !exists(host_.folders().absolutePath(target))) {
        // A path with blanks that nobody quoted.
        auto whole = LiteralMarks::dropped(resolved(step.text, origin));
        if (exists(host_.folders().absolutePath(whole))) {
            target = std::move(whole);
            arguments.clear();
        }
    }
    if (isForeignProgram(target)) {
        host_.log(LogLevel::Warning, origin.section, "This program does not run here: " + target);
        return true;
    }
    if (!workspace)
        return false;
    const auto program = programPath(target);
    if (arguments.empty() && !isProgram(program))
        return workspace->openFile(program);
    return host_.host().isAllowed(Permission::Programs, step.text) && workspace->launch(program, arguments);
}

/// Of a bare name that is no file of the skin, the program of that name in the user's search path.
std::string FullActions::programPath(const std::string& target) const {
    auto path = host_.folders().absolutePath(target);
    const char* places = std::getenv("PATH");
    if (exists(path) || !places || target.find_first_of("/\\") != std::string::npos)
        return path;
    for (const auto place : splitDroppingEmpty(places, ':')) {
        auto candidate = appendingPathComponent(place, target);
        if (isAbsolutePath(candidate) && exists(candidate) && isProgram(candidate))
            return candidate;
    }
    return path;
}

std::string FullActions::resolved(std::string_view text, const ActionOrigin& origin) const {
    return scope_.resolveNow(text, origin.section, InArguments, origin.events.get());
}

} // namespace Ostrel
