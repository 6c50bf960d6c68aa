#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// One argument, references unresolved, without the quotes around it.
struct ActionArgument {
    std::string text;
    /// In `"""..."""`: no formula, no splitting inside. References in it are resolved.
    bool isLiteral = false;

    friend bool operator==(const ActionArgument&, const ActionArgument&) = default;
};

/// One thing that an action string does.
struct ActionTextStep {
    enum class Kind {
        /// `name` without "!" and the old prefix "Rainmeter".
        Bang,
        /// Play, PlayLoop, PlayStop.
        Sound,
        /// A program, file or address: `name` is the first word. A bracket form alone, `[&M]` or `[$E]`, keeps its
        /// brackets; `[M]` is the word M, so whoever opens it asks first for a section of that name.
        Open,
        /// A variable alone at the top level, `[#V]`: `name` is V, and its value is split again when it runs.
        Variable,
        /// `[]`.
        Nothing,
    };
    Kind kind = Kind::Nothing;
    std::string name;
    std::vector<ActionArgument> arguments;
    /// The step as written, without the brackets around it: what an unquoted path with blanks is read from.
    std::string text;

    friend bool operator==(const ActionTextStep&, const ActionTextStep&) = default;
};

/// Splits an action string, whose `#V#` are replaced already, before bracket references are resolved, so that no value
/// can add a step or an argument. Arguments end at blanks outside double quotes and brackets; a quote that nothing
/// closes is a sign like any other. `!Execute` before a step or a list of steps does nothing. What stands between the
/// literal marks (see `LiteralMarks`) is part of an argument, whatever it holds; arguments keep the marks. Bounded in
/// steps, arguments and length: what is beyond is not done.
std::vector<ActionTextStep> parseActionText(std::string_view text);

} // namespace Ostrel
