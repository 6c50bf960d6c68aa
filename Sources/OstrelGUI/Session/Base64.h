#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

/// With the usual alphabet and padding (RFC 4648).
void appendBase64(std::string& text, std::string_view bytes);
/// Absent for anything that the encoder does not write.
std::optional<std::string> decodedBase64(std::string_view text);

} // namespace Ostrel
