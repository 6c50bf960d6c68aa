#pragma once

#include <optional>
#include <set>
#include <span>
#include <string>

namespace Ostrel {

struct PackRoots {
    /// Standardized, each once.
    std::set<std::string> paths;
    /// A sentence for the user where one of the paths is none that anybody means; else empty.
    std::string failure;
};
PackRoots standardizedPackRoots(std::span<const std::string> paths);

/// Removes the folder, or whatever is there, for good. A symbolic link is removed as a link, the path itself too; what
/// it leads to stays. What went wrong as a sentence for the user; nothing to remove is no failure.
std::optional<std::string> removePack(const std::string& path);

} // namespace Ostrel
