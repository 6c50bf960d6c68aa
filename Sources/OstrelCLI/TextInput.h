#pragma once

#include <optional>
#include <string>

namespace Ostrel {

/// The whole of a file, or of standard input for "-"; absent when it cannot be read.
std::optional<std::string> readTextInput(const std::string& path);

} // namespace Ostrel
