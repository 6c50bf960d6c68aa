#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Text that came from a measure, a script, a player or the user must stay text, also after `!SetOption` or
/// `!SetVariable` stored it among text that an author wrote. A title "[!Quit]" or "#x#" would otherwise become an
/// action or a reference when the option is read.
///
/// A text that is stored and read again therefore carries such data between two marks, the noncharacters U+FDD0 and
/// U+FDD1, which no file, font or player uses. Reference resolution and action splitting pass over what stands between
/// them; names drop them; a text loses them when it is used: `ReferenceText::resolve` drops them together with the
/// stars of escapes. Whoever shows or writes a stored text without resolving it (a variable for a script, a key for a
/// file) calls `dropped`. Marks inside data are removed before it is marked, so that data cannot end its own region.
namespace Ostrel::LiteralMarks {

inline constexpr std::string_view Open = "\xEF\xB7\x90";
inline constexpr std::string_view Close = "\xEF\xB7\x91";
/// The first byte of both.
inline constexpr char Lead = '\xEF';

/// The data between marks; as it is when it holds nothing but letters, digits and harmless signs.
std::string marked(std::string_view data);
/// Without marks; what stands between them stays.
std::string dropped(std::string_view text);
bool isAt(std::string_view text, std::size_t at, std::string_view mark);
/// The place behind the region that begins at `at`, which is the end of the text where nothing closes it. `at` itself
/// when no region begins there.
std::size_t regionEnd(std::string_view text, std::size_t at);

} // namespace Ostrel::LiteralMarks
