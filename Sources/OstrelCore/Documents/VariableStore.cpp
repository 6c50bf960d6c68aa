#include "OstrelCore/Documents/VariableStore.h"

#include "OstrelCore/Files/Paths.h"

namespace Ostrel {

namespace {

std::string withTrailingSlash(std::string directory) {
    if (!directory.ends_with('/'))
        directory += '/';
    return directory;
}

} // namespace

const std::string* VariableStore::value(std::string_view name) const {
    const auto hash = CaseFolding::hash(name);
    const auto* found = builtIn_.find(name, hash);
    return found ? found : userDefined_.find(name, hash);
}

std::vector<std::string> VariableStore::allVariableNames() const {
    CaseInsensitiveDictionary<char> names;
    for (const auto* kind : {&builtIn_, &userDefined_}) {
        for (const auto& variable : *kind)
            names.insertIfAbsent(upperCased(variable.key), 0);
    }
    return names.keys();
}

void VariableStore::loadVariables(const INISection& section) {
    section.forEachLine([&](const INIKeyValue& line) { userDefined_.insertIfAbsent(line.key, line.value); });
}

void VariableStore::configureBuiltIns(
    const std::string& skinFilePath, std::string_view skinsPath, std::string_view settingsPath) {
    const auto directory = deletingLastPathComponent(skinFilePath);
    const auto base = resourcesBaseDirectory(directory);
    setBuiltIn("CURRENTPATH", withTrailingSlash(directory));
    setBuiltIn("CURRENTFILE", lastPathComponent(skinFilePath));
    setBuiltIn("SKINSPATH", std::string(skinsPath));
    setBuiltIn("SETTINGSPATH", std::string(settingsPath));
    setBuiltIn("CRLF", "\n");
    setBuiltIn("@", withTrailingSlash(base) + "@Resources/");

    const auto config = lastPathComponent(directory);
    const auto root = lastPathComponent(base);
    if (!config.empty())
        setBuiltIn("CURRENTCONFIG", config);
    if (!root.empty() || !config.empty())
        setBuiltIn("ROOTCONFIG", root.empty() ? config : root);
}

} // namespace Ostrel
