#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// One argument as written, references unresolved.
struct ActionArgument {
    std::string text;
    /// In `"""..."""`: no formula, no splitting inside.
    bool isLiteral = false;

    friend bool operator==(const ActionArgument&, const ActionArgument&) = default;
};

/// One thing that an action string does.
struct ActionStep {
    enum class Kind {
        /// `name` without "!" and an old prefix.
        Bang,
        /// Play, PlayLoop, PlayStop.
        Sound,
        /// A program, file or address: `name` is the first word.
        Open,
        /// A variable alone at the top level, `[#V]`: its value is split again when it runs.
        Variable,
        /// `[]`.
        Nothing,
    };
    Kind kind = Kind::Nothing;
    std::string name;
    std::vector<ActionArgument> arguments;

    friend bool operator==(const ActionStep&, const ActionStep&) = default;
};

/// Splits an action string, whose `#V#` are replaced already, before bracket references are resolved. Bounded in steps
/// and length.
std::vector<ActionStep> parseActionText(std::string_view text);

} // namespace Ostrel
