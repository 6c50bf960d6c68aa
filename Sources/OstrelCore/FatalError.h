#pragma once

#include <string_view>

namespace Ostrel {

/// Writes the message to standard error and aborts: for the few faults that a program must not outlive.
[[noreturn]] void fatalError(std::string_view message);

} // namespace Ostrel
