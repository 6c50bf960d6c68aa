#pragma once

#include <optional>
#include <string>

namespace Ostrel {

/// The address of the user's session bus; absent when the environment names none and there is none where it would be.
/// None is started.
std::optional<std::string> sessionBusAddress();

} // namespace Ostrel
