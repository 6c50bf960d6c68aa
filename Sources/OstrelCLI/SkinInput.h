#pragma once

#include "OstrelCLI/Command.h"

#include <string>
#include <vector>

namespace Ostrel {

struct SkinPaths {
    std::vector<std::string> paths;
    /// False when a given path could not be read, which has then been told on standard error.
    bool isComplete = true;
};

/// The skin files that the paths stand for, packages unpacked.
SkinPaths skinPaths(Arguments arguments);

} // namespace Ostrel
