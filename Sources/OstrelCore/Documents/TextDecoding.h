#pragma once

#include <string>

namespace Ostrel {

/// The bytes of a text file as UTF-8, by what they show of themselves: a UTF-8 or UTF-16 byte order mark (dropped)
/// when all the rest fits it, else UTF-8, else Windows code page 1252, which fits everything.
std::string decodeText(std::string bytes);

} // namespace Ostrel
