#pragma once

#include "OstrelCLI/Command.h"

#include <string_view>

namespace Ostrel::TraceCommand {

inline constexpr std::string_view Usage
    = "ostrel trace [--dialect base|full [--root DIR] [--screen W,H] [--allow LIST]] "
      "[--now TIME] SKIN [SCENARIO]";

/// Runs a skin on a virtual clock and prints what it does, one JSON object a line.
int run(Arguments arguments);

} // namespace Ostrel::TraceCommand
