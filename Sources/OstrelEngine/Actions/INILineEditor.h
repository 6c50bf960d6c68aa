#pragma once

#include <optional>
#include <string>
#include <string_view>

// Edits one key of an .ini text line by line, so that comments, order and everything else stay as their author wrote
// them.
namespace Ostrel::INILineEditor {

/// The text with `key` of `section` set to `value`. Section and key are trimmed and compare without case; a key that is
/// there already takes the new spelling. A missing key goes to the end of its section, a missing section to the end of
/// the text. One CR LF in the text makes it the line end of all lines.
std::string updateINIContent(
    std::string_view content, std::string_view section, std::string_view key, std::string_view value);

/// The trimmed name in the brackets, absent for a line that is no section header.
std::optional<std::string_view> sectionName(std::string_view line);
/// The trimmed key, absent for a comment and for a line without "=".
std::optional<std::string_view> keyName(std::string_view line);

} // namespace Ostrel::INILineEditor
