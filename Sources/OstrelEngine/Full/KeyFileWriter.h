#pragma once

#include <string>
#include <string_view>

namespace Ostrel {

struct PackFolders;

/// `!WriteKeyValue`: one key of a settings file, everything else in it byte for byte as it was.
namespace KeyFileWriter {

enum class Outcome {
    Written,
    /// Not in the pack, another pack of its library or its settings folder, links resolved.
    Outside,
    /// Files are never made.
    Missing,
    /// A name or a value that no line can hold.
    Unwritable,
    /// The disk refuses, or the file is larger than any that people write.
    Failed,
};

/// `path` is absolute.
Outcome write(const PackFolders& folders, const std::string& path, std::string_view section, std::string_view key,
    std::string_view value);

/// The bytes of the file with the key set: encoding, byte order mark and line ends stay. Of sections and keys that
/// stand there twice the first is meant, which is the one that a skin reads. A new key goes to the end of its section,
/// a new section to the end of the file. A value that the 8-bit code page of a file does not have makes the file
/// UTF-8.
std::string edited(const std::string& bytes, std::string_view section, std::string_view key, std::string_view value);

} // namespace KeyFileWriter

} // namespace Ostrel
