#pragma once

#include <string>
#include <string_view>

// Operations on the text of a path; only those from `resourcesBaseDirectory` on ask the disk.
namespace Ostrel {

/// Every backslash becomes a slash.
std::string normalizeSeparators(std::string_view path);
/// "/a/b.ini" gives "b.ini"; trailing slashes do not count; "/" gives "/".
std::string lastPathComponent(std::string_view path);
/// "/a/b" gives "/a", "/a" gives "/", "a" gives "".
std::string deletingLastPathComponent(std::string_view path);
/// One slash between the two; an empty directory gives the component alone.
std::string appendingPathComponent(std::string_view directory, std::string_view component);
/// Without the point; empty when there is none.
std::string pathExtension(std::string_view path);
bool isAbsolutePath(std::string_view path);
/// A leading "~" or "~/" becomes the user's home.
std::string expandingTilde(std::string_view path);
/// The same with that home.
std::string expandingTilde(std::string_view path, std::string_view home);
/// Absolute, without ".", ".." and doubled slashes; links are not followed. A relative path starts at the working
/// folder.
std::string standardizedPath(std::string_view path);

/// The nearest folder at or above `directory` that holds a folder "@Resources", ignoring case; `directory` itself when
/// there is none up to the root.
std::string resourcesBaseDirectory(std::string_view directory);
/// The nearest "@Resources" folder at or above `directory` as it is named on disk; `directory` + "/@Resources" when
/// there is none.
std::string sharedResourcesDirectory(std::string_view directory);

/// "#@#" becomes the nearest "@Resources" and "#CURRENTPATH#" the skin's own folder, both with a slash at the end and
/// in any case.
std::string replacingFolderVariables(std::string_view text, std::string_view skinDirectory);

/// The file or folder that a skin means by `path`: the path itself when it exists, else a match ignoring case,
/// component by component; the path unchanged when there is neither. Skins come from file systems that ignore case.
std::string existingPath(std::string_view path);

} // namespace Ostrel
