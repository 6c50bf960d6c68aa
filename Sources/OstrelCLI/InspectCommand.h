#pragma once

#include "OstrelCLI/Command.h"

#include <string_view>

namespace Ostrel::InspectCommand {

inline constexpr std::string_view Usage = "ostrel inspect SKIN";

/// Prints the loaded skin as one JSON object.
int run(Arguments arguments);

} // namespace Ostrel::InspectCommand
