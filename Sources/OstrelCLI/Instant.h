#pragma once

#include <optional>
#include <string_view>

namespace Ostrel {

/// Seconds since 1970-01-01 00:00:00 UTC of a text such as "2026-11-21T10:30:00Z" or "2026-11-21T10:30:00.25+01:00";
/// absent for any other form and for days that no calendar has.
std::optional<double> parseInstant(std::string_view text);

} // namespace Ostrel
