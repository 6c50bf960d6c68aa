#pragma once

#include "OstrelCLI/Command.h"

#include <string_view>

namespace Ostrel::ListCommand {

inline constexpr std::string_view Usage = "ostrel list PATH...";

/// Prints the skin files that the paths stand for, one a line.
int run(Arguments arguments);

} // namespace Ostrel::ListCommand
