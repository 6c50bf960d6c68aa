#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

struct CommandResult {
    /// Below 0 when the program ended by a signal or could not be started.
    int status = -1;
    std::string output;
    std::string messages;
};

/// Runs the built `ostrel` with these arguments and this standard input, and waits for its end.
CommandResult runOstrel(const std::vector<std::string>& arguments, std::string_view input = {});

} // namespace Ostrel
