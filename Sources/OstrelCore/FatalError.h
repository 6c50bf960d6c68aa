#pragma once

#include <string_view>

namespace Ostrel {

/// Writes the message to standard error and aborts: for the few faults that a program must not outlive.
[[noreturn]] void fatalError(std::string_view message);

/// The message of the fault that is ending the program; empty before one. A signal handler may call it.
const char* fatalMessage();

} // namespace Ostrel
