#pragma once

#include <span>
#include <stop_token>
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

/// Ends early with what it has where `stop` asks, for nobody waits for it any more.
Expansion resolve(std::span<const std::string> paths, const std::stop_token& stop = {});
/// The `skinPaths` of `resolve`: what cannot be resolved is left out.
std::vector<std::string> expand(std::span<const std::string> paths, const std::stop_token& stop = {});

} // namespace Ostrel::SkinPathResolver
