#include "OstrelCore/Files/Paths.h"

#include "OstrelCore/Files/DirectoryListings.h"
#include "OstrelCore/Text/Text.h"

#include <cstdlib>
#include <filesystem>
#include <vector>

namespace Ostrel {

namespace {

constexpr std::string_view ResourcesName = "@Resources";

/// Without slashes at the end; a path of nothing but slashes keeps one.
std::string_view withoutTrailingSlashes(std::string_view path) {
    while (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    return path;
}

bool isDirectory(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

/// The folder "@Resources" of exactly this directory as it is named on disk; empty when there is none.
std::string resourcesWithin(const std::string& directory, DirectoryListings& listings) {
    const auto found = listings.child(directory, ResourcesName);
    return found && isDirectory(*found) ? *found : std::string();
}

/// The nearest resources at or above a standardized directory; empty when there are none.
std::string nearestResources(std::string directory) {
    DirectoryListings listings;
    for (;;) {
        if (auto resources = resourcesWithin(directory, listings); !resources.empty())
            return resources;
        auto parent = deletingLastPathComponent(directory);
        if (parent == directory)
            return {};
        directory = std::move(parent);
    }
}

} // namespace

std::string normalizeSeparators(std::string_view path) {
    std::string result(path);
    for (char& c : result)
        c = c == '\\' ? '/' : c;
    return result;
}

std::string lastPathComponent(std::string_view path) {
    path = withoutTrailingSlashes(path);
    if (path == "/")
        return "/";
    return std::string(path.substr(path.rfind('/') + 1));
}

std::string deletingLastPathComponent(std::string_view path) {
    path = withoutTrailingSlashes(path);
    const auto slash = path.rfind('/');
    if (slash == std::string_view::npos)
        return {};
    return std::string(withoutTrailingSlashes(path.substr(0, slash + 1)));
}

std::string appendingPathComponent(std::string_view directory, std::string_view component) {
    if (directory.empty())
        return std::string(component);
    std::string result(withoutTrailingSlashes(directory));
    while (component.starts_with('/'))
        component.remove_prefix(1);
    if (component.empty())
        return result;
    if (result != "/")
        result += '/';
    return result.append(component);
}

std::string pathExtension(std::string_view path) {
    const auto name = lastPathComponent(path);
    const auto point = name.rfind('.');
    return point == std::string::npos || point == 0 ? std::string() : name.substr(point + 1);
}

bool isAbsolutePath(std::string_view path) {
    return path.starts_with('/') || path.starts_with('~');
}

std::string expandingTilde(std::string_view path) {
    const char* home = std::getenv("HOME");
    return home ? expandingTilde(path, home) : std::string(path);
}

std::string expandingTilde(std::string_view path, std::string_view home) {
    if (path != "~" && !path.starts_with("~/"))
        return std::string(path);
    return appendingPathComponent(home, path.substr(1));
}

std::string standardizedPath(std::string_view path) {
    std::string absolute(path);
    if (!path.starts_with('/')) {
        std::error_code failed;
        absolute = appendingPathComponent(std::filesystem::current_path(failed).string(), path);
    }
    std::vector<std::string_view> kept;
    for (const auto component : splitDroppingEmpty(absolute, '/')) {
        if (component == ".")
            continue;
        if (component != "..")
            kept.push_back(component);
        else if (!kept.empty())
            kept.pop_back();
    }
    std::string result;
    for (const auto component : kept)
        result.append("/").append(component);
    return result.empty() ? "/" : result;
}

std::string resourcesBaseDirectory(std::string_view directory) {
    auto start = standardizedPath(directory);
    const auto resources = nearestResources(start);
    return resources.empty() ? start : deletingLastPathComponent(resources);
}

std::string sharedResourcesDirectory(std::string_view directory) {
    auto resources = nearestResources(standardizedPath(directory));
    return resources.empty() ? appendingPathComponent(directory, ResourcesName) : resources;
}

std::string replacingFolderVariables(std::string_view text, std::string_view skinDirectory) {
    std::string result(text);
    // The walk to the resources is not for texts that do not name them.
    if (result.find("#@#") != std::string::npos)
        result = replacingOccurrences(result, "#@#", sharedResourcesDirectory(skinDirectory) + "/");
    std::string directory(skinDirectory);
    if (!directory.ends_with('/'))
        directory += '/';
    return replacingOccurrencesIgnoringCase(result, "#CURRENTPATH#", directory);
}

std::string existingPath(std::string_view path) {
    DirectoryListings listings;
    return listings.existingPath(path).value_or(std::string(path));
}

} // namespace Ostrel
