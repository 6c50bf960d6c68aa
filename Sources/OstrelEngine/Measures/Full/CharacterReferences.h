#pragma once

#include <optional>
#include <string_view>

namespace Ostrel {

/// The character that a named reference of HTML 4 stands for ("amp", "eacute"; case counts), with "apos" of XML.
/// Source: the HTML 4.01 recommendation, section 24.
std::optional<char32_t> characterOfReference(std::string_view name);

} // namespace Ostrel
