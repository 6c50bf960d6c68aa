#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// What references in a text see. One text belongs to one section, which gives CURRENTSECTION.
class ReferenceScope {
public:
    virtual ~ReferenceScope() = default;
    /// A variable or built-in value as raw text, which may hold further references; absent when there is none.
    virtual std::optional<std::string> variable(std::string_view name) const = 0;
    /// `[name]`, `[name:parameter]` and their `&` forms: a measure's or meter's value. Absent leaves the text as
    /// written. `parameter` is absent without a colon and empty for `[name:]`.
    virtual std::optional<std::string> section(
        std::string_view name, std::optional<std::string_view> parameter) const = 0;
    /// `[&Script:Function(arguments)]`: the arguments are split on the raw text and resolved one by one.
    virtual std::optional<std::string> call(
        std::string_view measure, std::string_view function, const std::vector<std::string>& arguments) const = 0;
    /// `$name$` and `[$name]`, while an event's action runs.
    virtual std::optional<std::string> event(std::string_view name) const = 0;
    /// `%NAME%`.
    virtual std::optional<std::string> environment(std::string_view name) const = 0;
};

/// Which references of a text are resolved; the others stay as written.
enum class ReferenceKinds : std::uint8_t {
    /// `#V#`, `%E%`.
    Signs = 1,
    /// `[#V]`, `[\c]`, `[$E]`.
    BracketVariables = 2,
    /// `[M]`, `[M:x]`, `[&M]`, `[&S:f()]`.
    Sections = 4,
    /// Drops the stars of `#*V*#`, `[*M*]`, `[#*V*]`, `[&*M*]`.
    Escapes = 8,
    AtLoad = Signs | BracketVariables | Escapes,
    /// An action, when its section is read: brackets and escapes wait until it runs.
    ActionAtLoad = Signs,
    All = Signs | BracketVariables | Sections | Escapes,
};

/// A text cut into literals and references once, so that resolving it again costs no scan.
class ReferenceText {
public:
    static ReferenceText parse(std::string_view raw);

    const std::string& raw() const { return raw_; }
    /// Whether nothing in it can ever change: the text is its own value.
    bool isPlain() const { return parts_.empty(); }
    bool hasSections() const { return hasSections_; }
    /// The text with references of these kinds replaced. Values of variables are scanned again, values of sections,
    /// calls and events never. Nesting, rounds and length are bounded; what is beyond stays as written.
    std::string resolve(const ReferenceScope& scope, std::string_view currentSection, ReferenceKinds kinds) const;

private:
    struct Part {
        enum class Kind : std::uint8_t { Literal, Signed, Bracket, Character, Environment, Event } kind;
        std::uint32_t begin = 0;
        std::uint32_t end = 0;
    };
    std::string raw_;
    std::vector<Part> parts_;
    bool hasSections_ = false;
};

/// One round for a text that is not kept.
std::string resolveReferences(
    std::string_view raw, const ReferenceScope& scope, std::string_view currentSection, ReferenceKinds kinds);

} // namespace Ostrel
