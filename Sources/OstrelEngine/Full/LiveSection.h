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

/// Whether an option holds an action, whose bracket references wait until it runs.
bool isActionOption(std::string_view key);

/// The options of one section: raw text with what bangs wrote, and what became of it when it was last read. Each text
/// is cut into references once. Reading again compares revisions first; what did not change costs nothing more.
class LiveSection {
public:
    /// `allAreActions`: the options of this section are actions but for the general ones.
    LiveSection(std::string name, Options raw, bool allAreActions);

    const std::string& name() const { return name_; }
    /// The section's own options as written or set by bangs; styles are not in it.
    const Options& raw() const { return raw_; }
    /// Grows with every change of `raw`.
    std::uint64_t revision() const { return revision_; }
    bool isDynamic() const { return isDynamic_; }
    /// Whether an option was set since it was last read.
    bool hasPending() const { return isPending_; }

    /// An empty value removes the option.
    void setRaw(std::string_view key, std::string_view value);

    /// At load: every option, references to sections left as they are.
    Options readAtLoad(const SkinScope& scope, const LiveSections& sections);
    /// Before an update: anew when the section is dynamic or an option was set. Only what changed reaches the target.
    void read(const SkinScope& scope, const LiveSections& sections, OptionTarget& target);

private:
    struct Entry {
        std::string key;
        ReferenceText text;
        ReferenceKinds kinds = ReferenceKinds::AtLoad;
        bool isAction = false;
        /// A bang set it: references to sections are resolved though the section is static.
        bool isSet = false;
        std::string value;
        ReferenceDependencies dependencies;
    };

    void compile(const SkinScope& scope, const LiveSections& sections);
    bool areStylesCurrent(const SkinScope& scope, const LiveSections& sections) const;
    void resolve(Entry& entry, const SkinScope& scope, ReferenceKinds kinds);

    std::string name_;
    Options raw_;
    bool allAreActions_ = false;
    std::uint64_t revision_ = 1;
    std::uint64_t compiledRevision_ = 0;
    bool isDynamic_ = false;
    bool isPending_ = false;
    CaseInsensitiveDictionary<bool> set_;
    std::vector<Entry> entries_;
    Entry style_;
    /// The sections that the style names, and what they were at.
    std::vector<std::pair<const LiveSection*, std::uint64_t>> styles_;
};

/// All sections of a skin by name.
class LiveSections {
public:
    /// Returns the place, which stays.
    std::size_t add(LiveSection section);
    std::size_t count() const { return sections_.size(); }
    LiveSection& at(std::size_t position) { return sections_[position]; }
    const LiveSection& at(std::size_t position) const { return sections_[position]; }
    LiveSection* find(std::string_view name);
    const LiveSection* find(std::string_view name) const;

private:
    std::vector<LiveSection> sections_;
    CaseInsensitiveDictionary<std::size_t> positions_;
};

} // namespace Ostrel
