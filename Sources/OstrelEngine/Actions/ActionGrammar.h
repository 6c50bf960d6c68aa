#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The grammar of action strings such as `[!SetVariable Speed "3"][!Redraw]`. No state, no knowledge of any bang.
namespace Ostrel {

struct ParsedActionCommand {
    enum class Kind {
        bang,
        /// Something to open: a URL or a file.
        raw,
    };

    Kind kind = Kind::raw;
    /// Of a bang: upper-cased, without the "!".
    std::string name;
    /// Of a bang its arguments as one trimmed text, otherwise the whole token.
    std::string text;

    friend bool operator==(const ParsedActionCommand&, const ParsedActionCommand&) = default;
};

namespace ActionGrammar {

/// The commands of an action string in order. `!Execute` wraps others and is none itself.
std::vector<ParsedActionCommand> parseCommands(std::string_view text);

/// Words and quoted texts, as views into the argument. A quote ends a bare word; there is no escape character.
std::vector<std::string_view> tokenizeArguments(std::string_view text);
std::optional<std::string_view> firstArgument(std::string_view text);

/// Views into the parsed text; a quoted text may be empty and is still present.
struct TwoArguments {
    std::optional<std::string_view> first;
    std::optional<std::string_view> second;

    friend bool operator==(const TwoArguments&, const TwoArguments&) = default;
};
/// A first word or quoted text, and all that follows it as one.
TwoArguments parseTwoArguments(std::string_view text);

/// Trimmed, without one pair of equal quotes around it; what was inside is not trimmed again. A view into the text.
std::string_view stripQuotes(std::string_view text);

} // namespace ActionGrammar

} // namespace Ostrel
