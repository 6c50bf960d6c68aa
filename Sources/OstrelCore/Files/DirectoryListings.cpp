#include "OstrelCore/Files/DirectoryListings.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <climits>
#include <dirent.h>
#include <unistd.h>

namespace Ostrel {

namespace {

bool exists(const std::string& path) {
    return ::access(path.c_str(), F_OK) == 0;
}

} // namespace

std::optional<std::string> DirectoryListings::existingPath(std::string_view path) {
    // Texts that no path can be; file functions would stop at a NUL and find another file.
    if (path.empty() || path.size() > PATH_MAX || path.find('\0') != std::string_view::npos)
        return std::nullopt;
    std::string exact(path);
    if (exists(exact))
        return exact;
    std::string found = path.starts_with('/') ? "/" : "";
    for (const auto component : splitDroppingEmpty(path, '/')) {
        auto entry = child(found, component);
        if (!entry)
            return std::nullopt;
        found = std::move(*entry);
    }
    return found;
}

std::optional<std::string> DirectoryListings::child(const std::string& directory, std::string_view name) {
    auto exact = appendingPathComponent(directory, name);
    if (exists(exact))
        return exact;
    for (const auto& entry : names(directory)) {
        if (equalsIgnoringCase(entry, name))
            return appendingPathComponent(directory, entry);
    }
    return std::nullopt;
}

const std::vector<std::string>& DirectoryListings::names(const std::string& directory) {
    const auto [place, isNew] = namesByDirectory_.try_emplace(directory);
    if (!isNew)
        return place->second;
    DIR* stream = ::opendir(directory.empty() ? "." : directory.c_str());
    if (!stream)
        return place->second;
    while (const auto* entry = ::readdir(stream))
        place->second.emplace_back(entry->d_name);
    ::closedir(stream);
    std::sort(place->second.begin(), place->second.end());
    return place->second;
}

} // namespace Ostrel
