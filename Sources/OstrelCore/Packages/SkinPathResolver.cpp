#include "OstrelCore/Packages/SkinPathResolver.h"

#include "OstrelCore/Files/FolderTree.h"
#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Packages/PackageCache.h"
#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <array>
#include <filesystem>

namespace Ostrel::SkinPathResolver {

namespace {

/// What a package says of itself to an installer; in a package no skin, though named like one.
constexpr std::array<std::string_view, 2> PackageMetadataFileNames = {"rmskin.ini", "rainstaller.cfg"};

bool hasExtension(std::string_view path, std::string_view extension) {
    return equalsIgnoringCase(pathExtension(path), extension);
}

bool isPackageMetadataINI(std::string_view path) {
    const auto name = lowerCased(lastPathComponent(path));
    return std::ranges::find(PackageMetadataFileNames, name) != PackageMetadataFileNames.end();
}

bool isInSkinsFolder(std::string_view normalizedPath) {
    const auto lower = lowerCased(normalizedPath);
    return lower.starts_with("skins/") || lower.find("/skins/") != std::string::npos;
}

void append(std::vector<std::string>& result, const std::string& directory, const std::vector<std::string>& paths) {
    for (const auto& path : paths)
        result.push_back(appendingPathComponent(directory, path));
}

bool collectINIPaths(const std::string& directory, const std::stop_token& stop, std::vector<std::string>& result) {
    std::vector<std::string> found;
    const bool isReadable = forEachEntryBelow(
        directory,
        [&](std::string_view path) {
            if (hasExtension(path, "ini"))
                found.emplace_back(path);
        },
        stop);
    append(result, directory, found);
    return isReadable;
}

/// A package keeps its skins below "Skins" and other `.ini` files, such as layouts, beside it.
bool collectINIPathsFromExtractedPackage(const std::string& directory, std::vector<std::string>& result) {
    std::vector<std::string> all;
    std::vector<std::string> skins;
    const bool isReadable = forEachEntryBelow(directory, [&](std::string_view path) {
        if (!hasExtension(path, "ini"))
            return;
        const auto normalized = normalizeSeparators(path);
        if (isPackageMetadataINI(normalized))
            return;
        all.emplace_back(path);
        if (isInSkinsFolder(normalized))
            skins.emplace_back(path);
    });
    append(result, directory, skins.empty() ? all : skins);
    return isReadable;
}

/// False when the path is unreadable.
bool collect(const std::string& path, const std::stop_token& stop, std::vector<std::string>& result) {
    std::error_code failed;
    const auto status = std::filesystem::status(path, failed);
    if (failed || !std::filesystem::exists(status))
        return false;
    if (std::filesystem::is_directory(status))
        return collectINIPaths(path, stop, result);
    if (hasExtension(path, "ini"))
        result.push_back(path);
    if (!hasExtension(path, "rmskin"))
        return true;
    const auto directory = PackageCache::shared().extractedDirectory(path);
    return directory && collectINIPathsFromExtractedPackage(*directory, result);
}

} // namespace

Expansion resolve(std::span<const std::string> paths, const std::stop_token& stop) {
    Expansion result;
    for (const auto& path : paths) {
        if (stop.stop_requested())
            break;
        if (!collect(path, stop, result.skinPaths))
            result.unreadablePaths.push_back(path);
    }
    std::ranges::sort(result.skinPaths);
    result.skinPaths.erase(std::unique(result.skinPaths.begin(), result.skinPaths.end()), result.skinPaths.end());
    return result;
}

std::vector<std::string> expand(std::span<const std::string> paths, const std::stop_token& stop) {
    return resolve(paths, stop).skinPaths;
}

} // namespace Ostrel::SkinPathResolver
