#pragma once

#include "OstrelCore/Documents/Diagnostic.h"
#include "OstrelCore/Text/CaseInsensitiveDictionary.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Ostrel {

/// A key line. The key is trimmed with its case kept; the value is trimmed and has lost one pair of enclosing quotes.
struct INIKeyValue {
    std::string key;
    std::string value;
    SourceLocation location;

    /// Builds both texts in place: lines are made by the thousand, and moving a short text costs a copy.
    INIKeyValue(std::string_view newKey, std::string_view newValue, const SourceLocation& at)
        : key(newKey)
        , value(newValue)
        , location(at) { }

    friend bool operator==(const INIKeyValue&, const INIKeyValue&) = default;
};

/// A comment line: the whole trimmed line, its semicolon included.
struct INIComment {
    std::string text;

    explicit INIComment(std::string_view newText)
        : text(newText) { }

    friend bool operator==(const INIComment&, const INIComment&) = default;
};

using INIEntry = std::variant<INIKeyValue, INIComment>;

/// The effective key lines of a section, in the order of their first definitions, as positions in its entries, where
/// the keys themselves stay. Kept by `INISection::append` and its kin.
struct INIKeyIndex {
    struct Line {
        std::uint32_t hash = 0;
        std::uint32_t position = 0;

        friend bool operator==(const Line&, const Line&) = default;
    };

    std::vector<Line> lines;
    CaseIndex index;

    friend bool operator==(const INIKeyIndex& a, const INIKeyIndex& b) { return a.lines == b.lines; }
};

struct INISection {
    /// As first written, blanks inside the brackets included.
    std::string name;
    SourceLocation location;
    /// Every comment and key line in reading order, repeated keys kept.
    std::vector<INIEntry> entries;
    INIKeyIndex keyValues;

    /// The effective line of that key, null when the key is missing.
    const INIKeyValue* line(std::string_view key) const;
    const INIKeyValue* line(const CaseKey& key) const;
    /// The effective value, null when the key is missing.
    const std::string* value(std::string_view key) const;
    const std::string* value(const CaseKey& key) const;
    const INIKeyValue& keyValue(std::size_t position) const { return std::get<INIKeyValue>(entries[position]); }
    /// Calls `visit` with each effective line, in the order of first definitions.
    template <typename Visit> void forEachLine(Visit visit) const {
        for (const auto& line : keyValues.lines)
            visit(keyValue(line.position));
    }

    /// Makes room for the lines of a section that is empty yet.
    void reserve(std::size_t lineCount);
    /// Appends a key line; its first definition becomes the effective one.
    void append(std::string_view key, std::string_view value, const SourceLocation& at);
    void appendComment(std::string_view text);
    /// Takes a key line only when its key is new.
    void appendIfAbsent(INIKeyValue line);

    friend bool operator==(const INISection&, const INISection&) = default;
};

struct INIDocument {
    /// In order of first appearance.
    std::vector<INISection> sections;
    /// Section name to its position in `sections`.
    CaseInsensitiveDictionary<std::size_t> sectionIndex;

    /// Null when there is none of that name; names compare without case and untrimmed.
    const INISection* section(std::string_view name) const;
    std::vector<std::string> sectionNames() const;

    /// The position of the section of that name, which is made at the end when it is missing.
    std::size_t addOrMergeSection(std::string_view name, const SourceLocation& at);
    /// Sections that are new here are appended whole; of the others only the keys that are new are taken.
    void mergeDocument(INIDocument included);

    friend bool operator==(const INIDocument&, const INIDocument&) = default;
};

} // namespace Ostrel
