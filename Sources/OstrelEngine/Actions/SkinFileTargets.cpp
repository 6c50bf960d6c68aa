#include "OstrelEngine/Actions/SkinFileTargets.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelCore/Text/URLScheme.h"
#include "OstrelEngine/Actions/ActionGrammar.h"

namespace Ostrel {

namespace {

constexpr std::size_t LongestExpansion = 65536;

bool isASCIILetter(char c) {
    return asciiUpper(c) >= 'A' && asciiUpper(c) <= 'Z';
}

/// Not taken from the skin's folder.
bool standsAlone(std::string_view path) {
    return path.starts_with('/') || path.starts_with('~') || isWindowsAbsolutePath(path);
}

/// The part of a config that lies below the pack's root; the whole when the pack's own name does not lead it.
std::string_view belowRoot(std::string_view config, std::string_view rootName) {
    if (equalsIgnoringCase(config, rootName))
        return {};
    const auto slash = config.find('/');
    if (slash != std::string_view::npos && !rootName.empty() && equalsIgnoringCase(config.substr(0, slash), rootName))
        return config.substr(slash + 1);
    return config;
}

} // namespace

bool isWindowsAbsolutePath(std::string_view text) {
    return text.size() >= 3 && isASCIILetter(text[0]) && text[1] == ':' && (text[2] == '/' || text[2] == '\\');
}

std::string SkinFileTargets::skinDirectory() const {
    return deletingLastPathComponent(skinPath_);
}

std::string SkinFileTargets::expandPathVariables(std::string_view text) const {
    std::string result(text);
    if (result.find('#') == std::string::npos)
        return result;
    result = replacingFolderVariables(result, skinDirectory());
    result = replacingOccurrencesIgnoringCase(result, "#CURRENTFILE#", lastPathComponent(skinPath_));
    for (const auto& variable : variables_) {
        if (result.size() > LongestExpansion || result.find('#') == std::string::npos)
            break;
        result = replacingOccurrencesIgnoringCase(result, "#" + variable.key + "#", variable.value);
    }
    return result;
}

std::string SkinFileTargets::resolveConfigPath(std::string_view config, std::optional<std::string_view> file) const {
    const auto root = resourcesBaseDirectory(skinDirectory());
    const auto expanded = normalizeSeparators(expandPathVariables(config));
    const auto name = trimmed(expanded);
    const auto directory = standsAlone(name) ? std::string(name)
                                             : appendingPathComponent(root, belowRoot(name, lastPathComponent(root)));
    const bool isNamed = file && !trimmed(*file).empty();
    const auto fileName = normalizeSeparators(isNamed ? std::string(*file) : lastPathComponent(skinPath_));
    return standardizedPath(appendingPathComponent(directory, fileName));
}

std::string SkinFileTargets::resolveWriteFilePath(std::string_view text) const {
    const auto stripped = ActionGrammar::stripQuotes(text);
    if (stripped.empty())
        return skinPath_;
    const auto path = normalizeSeparators(expandPathVariables(stripped));
    return standsAlone(path) ? expandingTilde(path) : appendingPathComponent(skinDirectory(), path);
}

std::optional<SkinFileTargets::External> SkinFileTargets::resolveExternalTarget(std::string_view text) const {
    const auto target = ActionGrammar::stripQuotes(text);
    if (target.empty())
        return std::nullopt;
    if (!urlScheme(target).empty())
        return External{External::Kind::url, std::string(target)};
    const auto path = normalizeSeparators(target);
    return External{External::Kind::file,
        standardizedPath(standsAlone(path) ? expandingTilde(path) : appendingPathComponent(skinDirectory(), path))};
}

} // namespace Ostrel
