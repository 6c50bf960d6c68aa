#include "OstrelDialect/PackFolders.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

namespace Ostrel {

namespace {

std::string withSlash(std::string path) {
    if (path.empty() || path.back() != '/')
        path += '/';
    return path;
}

bool isFolder(const std::string& path) {
    std::error_code failed;
    return std::filesystem::is_directory(path, failed);
}

/// The folder and those above it, without "/".
std::vector<std::string> foldersUpward(std::string folder) {
    std::vector<std::string> folders;
    for (; folder.size() > 1; folder = deletingLastPathComponent(folder))
        folders.push_back(folder);
    return folders;
}

bool isAtOrBelow(std::string_view path, std::string_view folder) {
    return path == folder || (path.starts_with(folder) && path.substr(folder.size()).starts_with('/'));
}

/// `folders` goes upward from the skin's own folder.
std::string findRoot(const std::vector<std::string>& folders, const std::string& opened) {
    for (std::size_t i = 1; i < folders.size(); ++i) {
        if (equalsIgnoringCase(lastPathComponent(folders[i]), "SKINS"))
            return folders[i - 1];
    }
    for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder) {
        if ((opened.empty() || isAtOrBelow(*folder, opened)) && isFolder(existingPath(*folder + "/@Resources")))
            return *folder;
    }
    if (!opened.empty())
        return opened;
    return folders.empty() ? "/" : folders.front();
}

/// Two packs of one name keep their data apart. FNV-1a, 32 bits.
std::string settingsFolderName(const std::string& root) {
    constexpr std::string_view Digits = "0123456789abcdef";
    std::uint32_t hash = CaseFolding::HashSeed;
    for (const char c : root)
        hash = CaseFolding::step(hash, c);
    std::string name = lastPathComponent(root) + "-";
    for (int shift = 28; shift >= 0; shift -= 4)
        name += Digits[(hash >> shift) & 0xF];
    return name;
}

std::string configName(const std::string& folder, const std::string& skins) {
    std::string name = folder.size() > skins.size() ? folder.substr(skins.size()) : std::string();
    for (char& c : name) {
        if (c == '/')
            c = '\\';
    }
    return name;
}

/// With the links of the part that exists resolved; absent when that cannot be told.
std::optional<std::string> withoutLinks(std::string_view path) {
    std::error_code failed;
    const auto resolved = std::filesystem::weakly_canonical(std::filesystem::path(path), failed);
    return failed ? std::nullopt : std::optional(resolved.string());
}

} // namespace

std::string PackFolders::settingsBaseOfUser() {
    if (const char* data = std::getenv("XDG_DATA_HOME"); data && *data == '/')
        return std::string(data) + "/ostrel/packs";
    const char* home = std::getenv("HOME");
    return std::string(home ? home : "/nonexistent") + "/.local/share/ostrel/packs";
}

PackFolders PackFolders::find(const std::string& skinFile, std::optional<std::string_view> openedFolder,
    std::optional<std::string_view> rootOverride, const std::string& settingsBase) {
    PackFolders result;
    result.skinFile = standardizedPath(skinFile);
    const std::string folder = deletingLastPathComponent(result.skinFile);
    const auto folders = foldersUpward(folder);
    const std::string opened = openedFolder ? standardizedPath(*openedFolder) : std::string();
    const std::string root = rootOverride ? standardizedPath(*rootOverride) : findRoot(folders, opened);
    result.skinFolder = withSlash(folder);
    result.root = withSlash(root);
    result.skins = withSlash(deletingLastPathComponent(root));
    result.resources = withSlash(existingPath(result.root + "@Resources"));
    result.settings = withSlash(appendingPathComponent(settingsBase, settingsFolderName(root)));
    result.rootConfig = lastPathComponent(root);
    result.config = isAtOrBelow(folder, root) ? configName(folder, result.skins) : lastPathComponent(folder);
    return result;
}

std::optional<std::string> PackFolders::variable(std::string_view name) const {
    const std::array<std::pair<std::string_view, const std::string*>, 8> own
        = {{{"@", &resources}, {"CURRENTPATH", &skinFolder}, {"ROOTCONFIGPATH", &root}, {"ROOTCONFIG", &rootConfig},
            {"CURRENTCONFIG", &config}, {"SKINSPATH", &skins}, {"SETTINGSPATH", &settings}, {"CURRENTFILE", nullptr}}};
    for (const auto& [key, value] : own) {
        if (equalsIgnoringCase(name, key))
            return value ? *value : lastPathComponent(skinFile);
    }
    constexpr std::array<std::pair<std::string_view, std::string_view>, 3> Below
        = {{{"ADDONSPATH", "Addons/"}, {"PLUGINSPATH", "Plugins/"}, {"PROGRAMPATH", "Program/"}}};
    for (const auto& [key, below] : Below) {
        if (equalsIgnoringCase(name, key))
            return settings + std::string(below);
    }
    if (equalsIgnoringCase(name, "PROGRAMDRIVE"))
        return std::string();
    if (equalsIgnoringCase(name, "CONFIGEDITOR"))
        return "xdg-open";
    return std::nullopt;
}

std::string PackFolders::absolutePath(std::string_view path) const {
    std::string wanted = normalizeSeparators(path);
    if (!isAbsolutePath(wanted))
        wanted = skinFolder + wanted;
    return existingPath(standardizedPath(wanted));
}

bool PackFolders::isInPack(std::string_view path) const {
    const auto real = withoutLinks(path);
    if (!real)
        return false;
    for (const auto* folder : {&root, &settings}) {
        const auto base = withoutLinks(std::string_view(*folder).substr(0, folder->size() - 1));
        if (base && isAtOrBelow(*real, *base))
            return true;
    }
    return false;
}

} // namespace Ostrel
