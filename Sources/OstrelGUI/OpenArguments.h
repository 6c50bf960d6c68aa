#pragma once

#include <span>
#include <string>
#include <vector>

namespace Ostrel {

/// What the program was started with, each argument as one choice of the user's.
struct OpenArguments {
    /// Skin files, to be shown.
    std::vector<std::string> skins;
    /// Folders and packages, to be listed.
    std::vector<std::string> collections;
    /// What is missing or none of these, as it was given.
    std::vector<std::string> unreadable;

    /// Looks at the disk; the paths become absolute.
    static OpenArguments sort(std::span<const std::string> arguments);
    /// Skins and collections.
    std::vector<std::string> paths() const;
};

} // namespace Ostrel
