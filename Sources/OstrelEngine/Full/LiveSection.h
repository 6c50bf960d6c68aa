#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelDialect/References.h"
#include "OstrelEngine/Full/SkinScope.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Ostrel {

class LiveSections;

/// What takes the options of a section as they are resolved: a measure or a meter.
class OptionTarget {
public:
    virtual ~OptionTarget() = default;
    virtual void setOption(std::string_view key, std::string_view value) = 0;
    virtual void removeOption(std::string_view key) = 0;
};

/// Whether an option holds an action by its name: its bracket references wait until it runs.
bool isActionOption(std::string_view key);

/// The options of one section: raw text with what bangs wrote, and what became of it when it was last read. Each text
/// is cut into references once. Reading again compares revisions first, so that what did not change costs no more.
class LiveSection {
public:
    /// Whether all options but the general ones are actions, whatever their names.
    enum class Actions { ByName, All };

    LiveSection(std::string name, Options raw, Actions actions = Actions::ByName);

    const std::string& name() const { return name_; }
    /// The section's own options as written or set by bangs; styles are not in it.
    const Options& raw() const { return raw_; }
    /// Grows with every change of `raw`.
    std::uint64_t revision() const { return revision_; }
    /// Whether `read` has anything to do.
    bool isToBeRead() const { return isDynamic_ || isPending_; }

    /// An empty value removes the option. Seen when the section is read next. The kind of a section stays.
    void setOption(std::string_view key, std::string_view value);

    /// At load: every option, styles included, references to sections left as they are.
    Options readAtLoad(const SkinScope& scope, const LiveSections& sections);
    /// Before an update: does something only when the section is dynamic or an option was set. What changed reaches the
    /// target.
    void read(const SkinScope& scope, const LiveSections& sections, OptionTarget& target);
    /// The raw text of an option, own or by a style; null when it is not written.
    const std::string* effective(std::string_view key) const;

private:
    struct Entry {
        std::string key;
        ReferenceText text;
        bool isAction = false;
        /// A bang set it: references to sections are resolved though the section is static.
        bool isSet = false;
        /// The target has not got the present text yet.
        bool isStale = true;
        ReferenceDependencies dependencies;
    };

    ReferenceKinds kinds(const Entry& entry) const;
    Entry makeEntry(std::string_view key, const std::string& raw) const;
    std::string resolve(Entry& entry, const SkinScope& scope) const;
    static bool isToBeRead(const Entry& entry, const SkinScope& scope);
    bool isTaken(std::string_view key, std::uint32_t hash, std::size_t styleCount) const;
    bool areStylesCurrent() const;
    void findStyles(const LiveSections& sections);
    /// Cuts the effective options anew, keeping what stays. The keys that are gone are returned.
    std::vector<std::string> compile(const LiveSections& sections);
    void noteDynamic(std::string_view text);
    void readEntries(const SkinScope& scope, OptionTarget& target);
    void watch();

    std::string name_;
    Options raw_;
    Actions actions_;
    std::uint64_t revision_ = 1;
    std::uint64_t compiledRevision_ = 0;
    bool isDynamic_ = false;
    bool isPending_ = false;
    bool isWatching_ = false;
    /// Options that bangs set.
    CaseInsensitiveDictionary<bool> set_;
    std::vector<Entry> entries_;
    /// All that the entries were made of, each thing once.
    ReferenceDependencies watched_;
    Entry style_;
    std::string styleNames_;
    /// The sections that MeterStyle names, the strongest first, and what they were at.
    std::vector<std::pair<const LiveSection*, std::uint64_t>> styles_;
};

/// All sections of a skin by name. Filled once; places stay.
class LiveSections {
public:
    std::size_t add(LiveSection section);
    void reserve(std::size_t count) { sections_.reserve(count); }
    LiveSection& at(std::size_t position) { return sections_[position]; }
    const LiveSection& at(std::size_t position) const { return sections_[position]; }
    LiveSection* find(std::string_view name);
    const LiveSection* find(std::string_view name) const;

private:
    std::vector<LiveSection> sections_;
    CaseInsensitiveDictionary<std::size_t> positions_;
};

} // namespace Ostrel
