#pragma once

#include "OstrelCLI/Command.h"

#include <string_view>

namespace Ostrel::RenderCommand {

inline constexpr std::string_view Usage
    = "ostrel render [--dialect base|full [--root DIR] [--screen W,H] [--allow LIST]] "
      "[--ticks N] [--scenario FILE] [--scale S] "
      "[--background R,G,B[,A]] [--now TIME] -o OUT.png SKIN";

/// Runs a skin and writes what its panel would show as a PNG.
int run(Arguments arguments);

} // namespace Ostrel::RenderCommand
