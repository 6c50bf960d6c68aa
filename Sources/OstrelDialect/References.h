#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Ostrel {

/// What references in a text see. One text belongs to one section, which gives CURRENTSECTION.
class ReferenceScope {
public:
    virtual ~ReferenceScope() = default;
    /// A variable or built-in value as raw text, which may hold further references; absent when there is none. A value
    /// that is data (a path, the user's input) goes through `LiteralMarks::marked`. CURRENTSECTION is never asked for.
    virtual std::optional<std::string> variable(std::string_view name) const = 0;
    /// `[name]`, `[name:parameter]` and their `&` forms: a measure's or meter's value. Absent leaves the text as
    /// written. `parameter` is absent without a colon and empty for `[name:]`.
    virtual std::optional<std::string> section(
        std::string_view name, std::optional<std::string_view> parameter) const = 0;
    /// `[&Script:Function(arguments)]`: the arguments are split before references inside them are resolved, and keep
    /// their quotes or parentheses.
    virtual std::optional<std::string> call(
        std::string_view measure, std::string_view function, const std::vector<std::string>& arguments) const = 0;
    /// `$name$` and `[$name]`, while an event's action runs.
    virtual std::optional<std::string> event(std::string_view name) const = 0;
    /// `%NAME%`.
    virtual std::optional<std::string> environment(std::string_view name) const = 0;

    /// Numbers that grow with each change, for `LiveText`: of anything that a reference can name, of the variables and
    /// built-in values, and of one section's values (the same number for all unknown names, grown when that changes).
    /// 0 means unknown: the text is resolved each time.
    virtual std::uint64_t revision() const { return 0; }
    virtual std::uint64_t variablesRevision() const { return 0; }
    virtual std::uint64_t sectionRevision(std::string_view name) const {
        static_cast<void>(name);
        return 0;
    }
};

/// Which references of a text are resolved; the others stay as written.
enum class ReferenceKinds : std::uint8_t {
    /// `#V#`, `%E%`.
    Signs = 1,
    /// `[#V]`, `[\c]`, `[$E]`, `$E$`.
    BracketVariables = 2,
    /// `[M]`, `[M:x]`, `[&M]`, `[&S:f()]`.
    Sections = 4,
    /// Drops the stars of `#*V*#`, `[*M*]`, `[#*V*]`, `[&*M*]`, and the marks around literals.
    Escapes = 8,
    /// With `Escapes`: keeps the marks, for a text that is stored and read again.
    Marks = 16,
    /// An option that is used as it comes out.
    AtLoad = Signs | BracketVariables | Escapes,
    /// An action, when its section is read: brackets and escapes wait until it runs.
    ActionAtLoad = Signs,
    All = Signs | BracketVariables | Sections | Escapes,
    /// A value for `!SetOption` and `!SetVariable`: see `LiteralMarks`.
    Stored = All | Marks,
};

constexpr ReferenceKinds operator|(ReferenceKinds a, ReferenceKinds b) {
    return static_cast<ReferenceKinds>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}
constexpr bool includes(ReferenceKinds kinds, ReferenceKinds kind) {
    return (static_cast<unsigned>(kinds) & static_cast<unsigned>(kind)) != 0;
}

/// What a text named when it was resolved.
struct ReferenceInputs {
    bool hasVariables = false;
    /// A call or an event took part: no revision tells whether they changed.
    bool isVolatile = false;
    std::vector<std::string> sections;
};

/// The text with references of these kinds replaced:
/// 1. `#V#`, `%E%` and `$E$`, again and again, up to 1,000 rounds. An unknown `#x#` stays; its closing sign may open
/// the
///    next name.
/// 2. `[#V]`, `[&M]`, `[$E]`, `[\c]`, innermost first, then `[M]`.
/// 3. Stars of escapes are dropped.
///
/// Values of variables are scanned again; values of sections, calls, events and the environment never. A variable whose
/// value needs itself stays as written, and so does what is beyond the bounds of length, nesting and work.
/// `inputs` collects what was named.
std::string resolveReferences(std::string_view raw, const ReferenceScope& scope, std::string_view currentSection,
    ReferenceKinds kinds, ReferenceInputs* inputs = nullptr);

/// A text and what it may hold, found once, so that text without references costs nothing.
class ReferenceText {
public:
    static ReferenceText parse(std::string_view raw);

    const std::string& raw() const { return raw_; }
    /// Whether nothing in it can ever change: the text is its own value.
    bool isPlain() const { return isPlain_; }
    /// Whether `[M]`, `[&M]` or what looks like one is written in it. A variable's value may bring more.
    bool hasSections() const { return hasSections_; }
    /// See `resolveReferences`. An empty `currentSection` leaves CURRENTSECTION as written.
    std::string resolve(const ReferenceScope& scope, std::string_view currentSection, ReferenceKinds kinds) const;

private:
    std::string raw_;
    bool isPlain_ = true;
    bool hasSections_ = false;
};

/// An option's text that follows what it names. Resolves only when that has changed.
class LiveText {
public:
    LiveText() = default;
    LiveText(std::string_view raw, ReferenceKinds kinds)
        : source_(ReferenceText::parse(raw))
        , kinds_(kinds) { }

    const ReferenceText& source() const { return source_; }
    /// As of the last update.
    const std::string& text() const { return text_; }
    /// Always with the same section. True when the text has changed; at the first time too. Does not allocate while
    /// the scope's revisions stand still.
    bool update(const ReferenceScope& scope, std::string_view currentSection);

private:
    bool isCurrent(const ReferenceScope& scope);
    void resolve(const ReferenceScope& scope, std::string_view currentSection);

    ReferenceText source_;
    ReferenceKinds kinds_ = ReferenceKinds::All;
    std::string text_;
    ReferenceInputs inputs_;
    std::uint64_t revision_ = 0;
    std::uint64_t variablesRevision_ = 0;
    std::vector<std::uint64_t> sectionRevisions_;
    bool isResolved_ = false;
};

} // namespace Ostrel
