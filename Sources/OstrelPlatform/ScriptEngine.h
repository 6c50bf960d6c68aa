#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// What lies between a script measure and the interpreter, which is a module of its own that is loaded at its first use.
namespace Ostrel {

class BaseMeasure;
class ScriptHost;

/// Nil, or what a script and its skin hand each other. Text is UTF-8.
using ScriptValue = std::variant<std::monostate, bool, double, std::string>;

/// What a script reaches: its skin and the files that it may touch. Paths as the script writes them: either separator,
/// relative to the skin's folder, in any case. Outlives the script.
class ScriptEnvironment {
public:
    virtual ~ScriptEnvironment() = default;
    virtual ScriptHost& skin() = 0;
    virtual const BaseMeasure& self() const = 0;
    /// Null when there is none.
    virtual const BaseMeasure* measure(std::string_view name) const = 0;
    /// The text of a measure, made from its number where it has none of its own.
    virtual std::string stringValue(const BaseMeasure& measure) const = 0;
    virtual std::string replaceVariables(std::string_view text) = 0;
    virtual std::string absolutePath(std::string_view path) const = 0;
    /// One line for the log.
    virtual void print(std::string_view text) = 0;

    /// A file's bytes; absent, with `error` set, for what is out of bounds, missing or too large.
    virtual std::optional<std::string> readFile(std::string_view path, std::string& error) = 0;
    /// The same as Lua text in UTF-8.
    virtual std::optional<std::string> readScript(std::string_view path, std::string& error) = 0;
    /// Whether a file there may be written.
    virtual bool isWritable(std::string_view path, std::string& error) = 0;
    virtual bool writeFile(std::string_view path, std::string_view bytes, std::string& error) = 0;
    virtual bool removeFile(std::string_view path, std::string& error) = 0;
    virtual bool renameFile(std::string_view from, std::string_view to, std::string& error) = 0;
};

/// What a call into a script may spend.
struct ScriptLimits {
    /// Bytes of the whole state.
    std::size_t memory = 64U << 20;
    double seconds = 1;
    long long instructions = 200'000'000;
};

/// One state with the globals of one script measure. Each call is bounded in instructions, time, memory and stack.
class Script {
public:
    struct Outcome {
        std::vector<ScriptValue> values;
        /// Absent after success. Names file and line.
        std::optional<std::string> error;
        /// A limit ended the call.
        bool wasCutOff = false;
    };

    virtual ~Script() = default;
    /// Runs a text as a chunk; byte code is refused. `name` stands in error messages.
    virtual Outcome run(std::string_view code, const std::string& name) = 0;
    /// Calls a global function. Tables and functions among the results count as nil.
    virtual Outcome call(std::string_view function, std::span<const ScriptValue> arguments) = 0;
    virtual bool hasFunction(std::string_view name) = 0;
    virtual Outcome global(std::string_view name) = 0;
    /// Gives each key of the global table PROPERTIES, if the script has one, the text of the measure's option.
    virtual void fillProperties() = 0;
    /// Bytes.
    virtual std::size_t memoryInUse() const = 0;
};

/// Makes the states.
class ScriptEngine {
public:
    virtual ~ScriptEngine() = default;
    /// Null when there is no interpreter.
    virtual std::unique_ptr<Script> start(ScriptEnvironment& environment, const ScriptLimits& limits) = 0;
};

} // namespace Ostrel
