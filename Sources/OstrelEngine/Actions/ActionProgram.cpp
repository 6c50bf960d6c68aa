#include "OstrelEngine/Actions/ActionProgram.h"

#include "OstrelEngine/Actions/ActionGrammar.h"

#include <utility>

namespace Ostrel {

namespace {

constexpr std::size_t MaxRememberedBytes = 1 << 20;
constexpr std::size_t MaxRememberedPrograms = 2048;

ActionProgram compile(std::string_view action) {
    ActionProgram program;
    for (auto& command : ActionGrammar::parseCommands(action)) {
        const bool isBang = command.kind == ParsedActionCommand::Kind::bang;
        const auto* bang = isBang ? findBang(command.name) : nullptr;
        const auto words = ActionGrammar::tokenizeArguments(command.text);
        if (isBang ? bang == nullptr : words.empty())
            continue;
        program.push_back({bang, command.text, {words.begin(), words.end()}});
    }
    return program;
}

} // namespace

std::shared_ptr<const ActionProgram> ActionPrograms::program(std::string_view action) {
    if (const auto found = programs_.find(action); found != programs_.end())
        return found->second;
    auto program = std::make_shared<const ActionProgram>(compile(action));
    if (rememberedBytes_ + action.size() > MaxRememberedBytes || programs_.size() >= MaxRememberedPrograms) {
        programs_.clear();
        rememberedBytes_ = 0;
    }
    if (action.size() <= MaxRememberedBytes) {
        rememberedBytes_ += action.size();
        programs_.emplace(action, program);
    }
    return program;
}

} // namespace Ostrel
