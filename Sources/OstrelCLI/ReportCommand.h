#pragma once

#include "OstrelCLI/Command.h"

#include <string_view>

namespace Ostrel::ReportCommand {

inline constexpr std::string_view Usage = "ostrel report [--json] PATH...";

/// Prints the compatibility report of every skin file that the paths stand for, as text or as one JSON array.
int run(Arguments arguments);

} // namespace Ostrel::ReportCommand
