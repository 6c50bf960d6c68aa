#pragma once

#include "OstrelCLI/Command.h"

#include <string_view>

namespace Ostrel::CalcCommand {

inline constexpr std::string_view Usage = "ostrel calc [--expression] [TEXT...]";

/// Prints the value of each text, or of each line of standard input when there is none: as a formula, or as an
/// expression in option text. The full dialect has one grammar for both.
int run(Arguments arguments);

} // namespace Ostrel::CalcCommand
