#pragma once

#include "OstrelCore/Packages/SkinInput.h"

#include <span>
#include <string>
#include <string_view>

namespace Ostrel {

enum ExitStatus { Done = 0, InputFailed = 1, WrongUsage = 2 };

using Arguments = std::span<const std::string_view>;

struct Command {
    std::string_view name;
    /// One line, without "usage: ".
    std::string_view usage;
    /// Takes what follows the command's name; gives the exit status.
    int (*run)(Arguments arguments);
};

/// The usage line on standard error; gives `WrongUsage`.
int wrongUsage(std::string_view usage);
/// Whether the argument is meant as an option; a path that looks like one can be written with "./".
bool isOption(std::string_view argument);

} // namespace Ostrel
