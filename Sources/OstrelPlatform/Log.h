#pragma once

#include <functional>
#include <string_view>

namespace Ostrel {

/// Takes one line without its end, for the people who look after the machine. Any thread.
using LogLine = std::function<void(std::string_view line)>;

void logToStandardError(std::string_view line);

} // namespace Ostrel
