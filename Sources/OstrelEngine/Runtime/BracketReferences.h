#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// References in square brackets whose names hold nothing but ASCII letters, digits and underscores.
namespace Ostrel::BracketReferences {

/// The text that "[Name:P]" stands for, P being one of XYZWH in upper case.
using CoordinateLookup = std::function<std::string(std::string_view name, char property)>;

/// The text with each "[Name:X]" (or Y, Z, W, H, in either case) replaced.
std::string substituteCoordinates(std::string_view text, const CoordinateLookup& lookup);

/// The names of all "[Name]" in the text, as views into it.
std::vector<std::string_view> names(std::string_view text);

} // namespace Ostrel::BracketReferences
