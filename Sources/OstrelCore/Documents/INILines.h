#pragma once

#include <optional>
#include <string_view>
#include <vector>

// The lines of a skin file. All views are into the text that was given.
namespace Ostrel {

enum class INILineKind { Comment, SectionHead, Key };

struct INILine {
    /// Trimmed, never empty; for a section head the name alone, untrimmed, never empty.
    std::string_view text;
    /// The first line is 1. Every newline character ends a line, so CR LF counts twice.
    int number = 0;
    INILineKind kind = INILineKind::Key;
};

struct INIKeyLine {
    /// Trimmed; may be empty.
    std::string_view key;
    /// Trimmed and without enclosing quotes.
    std::string_view value;
};

/// The lines that say something: blank lines and heads without a name or a closing bracket are left out.
std::vector<INILine> readLines(std::string_view text);

/// The two sides of a line of the kind `Key`; absent without "=".
std::optional<INIKeyLine> splitKeyLine(std::string_view line);

/// Without one pair of enclosing quotes of either kind, unless the text between holds the same quote.
std::string_view stripQuotes(std::string_view value);

} // namespace Ostrel
