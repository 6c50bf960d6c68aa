#pragma once

#include <string>
#include <string_view>

namespace Ostrel::INIFileWriter {

/// Sets one key in the .ini file at `path`, which is made with its folders when it is missing. What was read in another
/// encoding becomes UTF-8 without a mark. False when nothing was written; a file that cannot be read is never replaced.
bool writeKeyValue(const std::string& path, std::string_view section, std::string_view key, std::string_view value);

} // namespace Ostrel::INIFileWriter
