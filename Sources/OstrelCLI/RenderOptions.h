#pragma once

#include "OstrelCLI/Command.h"
#include "OstrelEngine/Geometry.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Ostrel {

/// What the arguments of `render` ask for.
struct RenderOptions {
    std::string skin;
    std::string output;
    /// That of the start included; absent when the user left it to us.
    std::optional<std::int64_t> ticks;
    std::optional<std::string> scenario;
    double scale = 1;
    std::optional<Color> background;
    std::optional<double> wallSeconds;
};

/// Absent when the arguments do not fit the usage.
std::optional<RenderOptions> parseRenderOptions(Arguments arguments);

} // namespace Ostrel
