#include "OstrelGUI/Session/PackRemoval.h"

#include "OstrelCore/Files/Paths.h"

#include <filesystem>

namespace Ostrel {

PackRoots standardizedPackRoots(std::span<const std::string> paths) {
    PackRoots roots;
    for (const auto& path : paths) {
        // An empty path would stand for the working folder.
        auto standardized = path.empty() ? std::string() : standardizedPath(path);
        if (standardized.empty() || standardized == "/")
            roots.failure = "“" + path + "” is no skin pack and was not removed.";
        roots.paths.insert(std::move(standardized));
    }
    return roots;
}

std::optional<std::string> removePack(const std::string& path) {
    std::error_code failed;
    std::filesystem::remove_all(path, failed);
    if (!failed)
        return std::nullopt;
    return "“" + path + "” could not be removed: " + failed.message() + ".";
}

} // namespace Ostrel
