#include "OstrelEngine/Full/ConfigNames.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/PackFolders.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <system_error>

namespace Ostrel::ConfigNames {

namespace {

constexpr std::size_t MaxVariants = 1000;

std::string withSlashes(std::string_view name) {
    auto path = normalizeSeparators(trimmed(name));
    while (path.ends_with('/'))
        path.pop_back();
    return path.substr(std::min(path.find_first_not_of('/'), path.size()));
}

/// Of a folder below the library; absent when there is no such folder.
std::optional<std::string> nameOfFolder(const PackFolders& folders, const std::string& below) {
    std::error_code failed;
    const auto folder = existingPath(standardizedPath(folders.skins + below));
    if (!folder.starts_with(folders.skins) || !std::filesystem::is_directory(folder, failed))
        return std::nullopt;
    auto name = folder.substr(folders.skins.size());
    std::ranges::replace(name, '/', '\\');
    return name;
}

std::string folderOf(const PackFolders& folders, std::string_view config) {
    return existingPath(standardizedPath(folders.skins + withSlashes(config)));
}

bool isSkinFile(const std::string& path) {
    return hasSuffixIgnoringCase(path, ".INI");
}

} // namespace

std::string canonical(const PackFolders& folders, std::string_view config) {
    const auto written = withSlashes(config);
    if (areSame(written, folders.config))
        return folders.config;
    if (const auto name = nameOfFolder(folders, written))
        return *name;
    const auto slash = written.find('/');
    const auto rest = slash == std::string::npos ? std::string() : written.substr(slash + 1);
    if (const auto name = nameOfFolder(folders, folders.rootConfig + (rest.empty() ? "" : "/" + rest));
        name && !rest.empty())
        return *name;
    if (const auto name = nameOfFolder(folders, folders.rootConfig + "/" + written))
        return *name;
    auto name = written;
    std::ranges::replace(name, '/', '\\');
    return name;
}

bool areSame(std::string_view a, std::string_view b) {
    return equalsIgnoringCase(withSlashes(a), withSlashes(b));
}

std::vector<std::string> variants(const PackFolders& folders, std::string_view canonicalConfig) {
    std::vector<std::string> files;
    std::error_code failed;
    for (std::filesystem::directory_iterator entry(folderOf(folders, canonicalConfig), failed), end;
         !failed && entry != end && files.size() < MaxVariants; entry.increment(failed)) {
        auto path = entry->path().string();
        std::error_code ignored;
        if (isSkinFile(path) && entry->is_regular_file(ignored))
            files.push_back(std::move(path));
    }
    std::ranges::sort(files, {}, [](const std::string& path) { return upperCased(lastPathComponent(path)); });
    return files;
}

std::optional<std::string> variant(
    const PackFolders& folders, std::string_view canonicalConfig, std::string_view fileName) {
    auto name = std::string(trimmed(fileName));
    if (!isSkinFile(name))
        name += ".ini";
    const auto folder = folderOf(folders, canonicalConfig);
    const auto path = existingPath(standardizedPath(appendingPathComponent(folder, normalizeSeparators(name))));
    std::error_code failed;
    if (!path.starts_with(folders.skins) || !std::filesystem::is_regular_file(path, failed))
        return std::nullopt;
    return path;
}

} // namespace Ostrel::ConfigNames
