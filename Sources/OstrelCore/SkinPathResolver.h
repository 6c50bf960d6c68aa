#pragma once

#include <span>
#include <string>
#include <vector>

/// From what the user chose to the skins it stands for: skin files, folders that hold some, and packages, which are
/// unpacked into the temporary folder once in the life of the process. May be called from any thread.
namespace Ostrel::SkinPathResolver {

struct Expansion {
    /// Each once, ascending by their bytes.
    std::vector<std::string> skinPaths;
    /// The given paths that are missing, folders that cannot be read and packages that cannot be unpacked, as given.
    std::vector<std::string> unreadablePaths;
};

Expansion resolve(std::span<const std::string> paths);
/// The `skinPaths` of `resolve`: what cannot be resolved is left out.
std::vector<std::string> expand(std::span<const std::string> paths);

} // namespace Ostrel::SkinPathResolver
