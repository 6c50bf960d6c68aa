#pragma once

#include <string_view>

namespace Ostrel {

/// What stands before the colon of a text that begins with the scheme of a URL, as written; empty when it begins with
/// none. One letter is a scheme too, though most callers mean a Windows drive by it. A view into the argument.
std::string_view urlScheme(std::string_view text);

} // namespace Ostrel
