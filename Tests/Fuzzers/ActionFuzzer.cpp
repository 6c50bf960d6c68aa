#include "OstrelEngine/Actions/ActionGrammar.h"
#include "OstrelEngine/Actions/INILineEditor.h"
#include "OstrelEngine/Actions/SkinFileTargets.h"
#include "OstrelEngine/Runtime/GroupNames.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

using namespace Ostrel;

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

/// Commands are cut out of the text, so that together they are no longer than it is.
void checkActions(std::string_view text) {
    std::size_t size = 0;
    for (const auto& command : ActionGrammar::parseCommands(text)) {
        require(command.kind == ParsedActionCommand::Kind::raw || !command.name.empty());
        size += command.text.size();
        for (const auto word : ActionGrammar::tokenizeArguments(command.text))
            require(word.size() <= command.text.size());
        ActionGrammar::parseTwoArguments(command.text);
    }
    require(size <= text.size());
    ActionGrammar::stripQuotes(text);
    GroupNames::parseGroups(text);
}

/// A key that was set stands there, and setting it again changes nothing.
void checkLineEditor(std::string_view content, std::string_view value) {
    const auto once = INILineEditor::updateINIContent(content, "S", "k", value);
    require(once.find("k=" + std::string(value)) != std::string::npos);
    if (content.find('\r') == std::string_view::npos && value.find_first_of("\r\n") == std::string_view::npos)
        require(INILineEditor::updateINIContent(once, " s ", "K", value).size() == once.size());
    INILineEditor::updateINIContent(content, value, content, value);
}

void checkTargets(std::string_view text) {
    Options variables;
    variables.set("A", "#B##B#");
    variables.set("B", std::string(text.substr(0, 64)));
    const std::string skinPath = "/nowhere/skin.ini";
    const SkinFileTargets targets(skinPath, variables);
    targets.resolveConfigPath(text, text);
    targets.resolveWriteFilePath(text);
    targets.resolveExternalTarget(text);
}

} // namespace

/// What a skin's text reaches without a running skin; the part behind the first line feed is also a file's content.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const auto first = input.substr(0, input.find('\n'));
    checkActions(input);
    checkLineEditor(input.substr(std::min(first.size() + 1, input.size())), first);
    checkTargets(first);
    return 0;
}
