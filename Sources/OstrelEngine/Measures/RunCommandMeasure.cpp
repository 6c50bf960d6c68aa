#include "OstrelEngine/Measures/RunCommandMeasure.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelCore/Text/URLScheme.h"
#include "OstrelPlatform/Platform.h"
#include "OstrelPlatform/Workspace.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

namespace {

bool isQuote(char c) {
    return c == '"' || c == '\'';
}

/// Skins wrap names in quotes, some twice.
std::string_view normalizeWrappedQuotes(std::string_view text) {
    text = trimmed(text);
    while (text.size() >= 2 && isQuote(text.front()) && text.front() == text.back())
        text = trimmed(text.substr(1, text.size() - 2));
    return text;
}

/// Quotes hold a word together wherever they stand in it; an empty word is none, and nothing escapes a quote.
std::vector<std::string> tokenizeArguments(std::string_view text) {
    std::vector<std::string> words;
    std::string word;
    char openQuote = 0;
    for (std::size_t i = 0; i < text.size();) {
        const auto [character, length] = decodeCharacter(text, i);
        const char c = text[i];
        if (openQuote ? c == openQuote : isQuote(c)) {
            openQuote = openQuote ? '\0' : c;
        } else if (openQuote || !(isWhitespace(character) || isNewline(character))) {
            word.append(text.substr(i, length));
        } else if (!word.empty()) {
            words.push_back(std::move(word));
            word.clear();
        }
        i += length;
    }
    if (!word.empty())
        words.push_back(std::move(word));
    return words;
}

/// One letter before a colon is a Windows drive.
bool isURL(std::string_view text) {
    return urlScheme(text).size() > 1;
}

bool exists(const std::string& path) {
    std::error_code failed;
    return std::filesystem::exists(path, failed);
}

} // namespace

RunCommandMeasure::RunCommandMeasure(
    const MeasureDefinition& definition, std::string skinPath, const Platform& platform)
    : BaseMeasure(definition, std::move(skinPath))
    , workspace_(platform.workspace) {
    publish(0, "", true, 0, 0);
}

bool RunCommandMeasure::executeCommand(std::string_view text) {
    const auto command = trimmed(text);
    const auto program = normalizeWrappedQuotes(option("Program"_key).value_or(""));
    if ((command.empty() || equalsIgnoringCase(command, "RUN")) && !program.empty())
        run(program);
    return true;
}

void RunCommandMeasure::run(std::string_view program) {
    if (isURL(program)) {
        if (workspace_)
            workspace_->openURL(std::string(program));
        return publishSuccess();
    }
    const auto path = existingPath(resolvePath(program));
    if (hasSuffixIgnoringCase(path, ".EXE"))
        return publishFailure("UNSUPPORTED_EXECUTABLE");
    if (!exists(path))
        return publishFailure("NOT_FOUND");
    const auto arguments = tokenizeArguments(normalizeWrappedQuotes(option("Parameter"_key).value_or("")));
    if (!workspace_ || !workspace_->launch(path, arguments))
        return publishFailure("LAUNCH_FAILED");
    publishSuccess();
}

std::string RunCommandMeasure::resolvePath(std::string_view program) const {
    auto path = normalizeSeparators(program);
    if (isAbsolutePath(path))
        return path;
    const auto skinDirectory = deletingLastPathComponent(skinPath());
    path = replacingFolderVariables(path, skinDirectory);
    return isAbsolutePath(path) ? path : appendingPathComponent(skinDirectory, path);
}

} // namespace Ostrel
