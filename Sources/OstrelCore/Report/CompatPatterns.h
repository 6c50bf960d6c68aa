#pragma once

#include <string_view>

/// Traces of Windows in the values of a skin, each the search for one fixed pattern. They look at every value of a
/// skin, so they scan by hand what a regular expression would take a compiled program and a copy in UTF-16 for.
namespace Ostrel::CompatPatterns {

/// `"[^"]*\.exe"|\b[^\s"']+\.exe\b`, without case: a quoted text that ends with ".exe", or a word with it.
bool containsExecutable(std::string_view value);
/// `[A-Za-z]:\\`
bool containsDrivePath(std::string_view value);
/// `%[A-Za-z]+%`
bool containsEnvironmentVariable(std::string_view value);

} // namespace Ostrel::CompatPatterns
