#pragma once

#include <string>
#include <string_view>

namespace Ostrel {

/// The text as it stands between the quotes of an AppleScript string.
std::string appleScriptStringLiteral(std::string_view text);

} // namespace Ostrel
