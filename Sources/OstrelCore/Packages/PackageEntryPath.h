#pragma once

#include <optional>
#include <string>
#include <string_view>

// The names that a package gives its entries. They come from strangers and say where files are to be written.
namespace Ostrel::PackageEntryPath {

constexpr std::size_t MaxLength = 1024;
constexpr std::size_t MaxComponentLength = 255;
constexpr std::size_t MaxDepth = 64;

/// The name as text: bytes that are no UTF-8 are taken as code page 437, in which packers write names otherwise.
std::string decoded(std::string_view bytes);

/// The path below the destination: slashes for backslashes, no empty and no "." component; empty for the destination
/// itself. Absent for a name that leads elsewhere (absolute, with a drive letter or ".."), or is beyond the limits.
std::optional<std::string> relativePath(std::string_view name);

/// Whether a link at `path`, a result of `relativePath`, would point to something outside the destination.
bool isLinkOutside(std::string_view path, std::string_view target);

} // namespace Ostrel::PackageEntryPath
