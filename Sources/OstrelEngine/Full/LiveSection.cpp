#include "OstrelEngine/Full/LiveSection.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Ostrel {

namespace {

/// A line that lists more styles than this is no skin's.
constexpr std::size_t MaxStyles = 256;

/// What makes a section what it is stays for its life and is inherited by none.
bool isKindOption(std::string_view key) {
    return equalsIgnoringCase(key, "Measure") || equalsIgnoringCase(key, "Meter") || equalsIgnoringCase(key, "Plugin");
}

/// Options that are no actions in a section of actions.
bool isGeneralOption(std::string_view key) {
    constexpr std::array<std::string_view, 12> Names{"Measure", "Plugin", "UpdateDivider", "DynamicVariables",
        "Disabled", "Paused", "Group", "MinValue", "MaxValue", "InvertMeasure", "IgnoreWarnings", "MeterStyle"};
    return std::ranges::any_of(Names, [&](std::string_view name) { return equalsIgnoringCase(key, name); });
}

std::string_view withoutNumber(std::string_view key) {
    const auto end = key.find_last_not_of("0123456789");
    return key.substr(0, end == std::string_view::npos ? 0 : end + 1);
}

} // namespace

bool isActionOption(std::string_view key) {
    const auto name = withoutNumber(key);
    return hasSuffixIgnoringCase(name, "ACTION") || hasSuffixIgnoringCase(name, "COMMAND");
}

LiveSection::LiveSection(std::string name, Options raw, Actions actions)
    : name_(std::move(name))
    , raw_(std::move(raw))
    , actions_(actions) { }

void LiveSection::setOption(std::string_view key, std::string_view value) {
    if (key.empty() || isKindOption(key))
        return;
    // Set again to what it is already: the section is read all the same.
    isPending_ = true;
    if (value.empty()) {
        if (!raw_.contains(key))
            return;
        raw_.remove(key);
        set_.remove(key);
        ++revision_;
        return;
    }
    set_.set(key, true);
    if (const auto* written = raw_.find(key); written && *written == value)
        return;
    raw_.set(key, std::string(value));
    ++revision_;
}

ReferenceKinds LiveSection::kinds(const Entry& entry) const {
    if (entry.isAction)
        return ReferenceKinds::ActionAtLoad;
    return isDynamic_ || entry.isSet ? ReferenceKinds::All : ReferenceKinds::AtLoad;
}

LiveSection::Entry LiveSection::makeEntry(std::string_view key, const std::string& raw) const {
    Entry entry;
    entry.key = key;
    entry.text = ReferenceText::parse(raw);
    entry.isAction = isActionOption(key) || (actions_ == Actions::All && !isGeneralOption(key));
    return entry;
}

void LiveSection::refresh(Entry& entry, const SkinScope& scope) const {
    entry.isStale = false;
    entry.value
        = entry.text.isPlain() ? entry.text.raw() : scope.resolve(entry.text, name_, kinds(entry), entry.dependencies);
}

bool LiveSection::areStylesCurrent() const {
    return compiledRevision_ == revision_
        && std::ranges::all_of(styles_, [](const auto& style) { return style.first->revision() == style.second; });
}

void LiveSection::findStyles(const LiveSections& sections) {
    styles_.clear();
    const auto names = split(style_.value, '|');
    for (auto name = names.rbegin(); name != names.rend() && styles_.size() < MaxStyles; ++name) {
        const auto* style = sections.find(trimmed(*name));
        if (style && style != this)
            styles_.emplace_back(style, style->revision());
    }
}

const std::string* LiveSection::effective(std::string_view key) const {
    if (const auto* own = raw_.find(key))
        return own;
    for (const auto& [style, revision] : styles_) {
        if (const auto* inherited = style->raw_.find(key))
            return inherited;
    }
    return nullptr;
}

std::vector<std::string> LiveSection::compile(const LiveSections& sections) {
    findStyles(sections);
    compiledRevision_ = revision_;
    auto before = std::exchange(entries_, {});
    CaseInsensitiveDictionary<std::size_t> old;
    for (std::size_t i = 0; i < before.size(); ++i)
        old.set(before[i].key, i);
    CaseInsensitiveDictionary<bool> seen;
    const auto add = [&](const std::string& key, const std::string& raw, bool isOwn) {
        if (!seen.insertIfAbsent(key, true))
            return;
        const bool isSet = isOwn && set_.contains(key);
        const auto* place = old.find(key);
        if (place && before[*place].text.raw() == raw) {
            entries_.push_back(std::move(before[*place]));
        } else {
            entries_.push_back(makeEntry(key, raw));
            // What the target has, so that only a change reaches it.
            if (place)
                entries_.back().value = std::move(before[*place].value);
        }
        auto& entry = entries_.back();
        entry.isStale = entry.isStale || entry.isSet != isSet;
        entry.isSet = isSet;
    };
    for (const auto& [key, raw, hash] : raw_)
        add(key, raw, true);
    for (const auto& [style, revision] : styles_) {
        for (const auto& [key, raw, hash] : style->raw_) {
            if (!isKindOption(key) && !equalsIgnoringCase(key, "MeterStyle"))
                add(key, raw, false);
        }
    }
    std::vector<std::string> gone;
    for (const auto& [key, place, hash] : old) {
        if (!seen.contains(key))
            gone.push_back(key);
    }
    return gone;
}

void LiveSection::noteDynamic() {
    const auto found = std::ranges::find_if(
        entries_, [](const Entry& entry) { return equalsIgnoringCase(entry.key, "DynamicVariables"); });
    const bool isDynamic = found != entries_.end() && OptionValues::isOn(found->value).value_or(false);
    if (isDynamic == isDynamic_)
        return;
    isDynamic_ = isDynamic;
    for (auto& entry : entries_)
        entry.isStale = true;
}

Options LiveSection::readAtLoad(const SkinScope& scope, const LiveSections& sections) {
    if (const auto* style = raw_.find("MeterStyle"_key)) {
        style_ = makeEntry("MeterStyle", *style);
        refresh(style_, scope);
    }
    compile(sections);
    Options options;
    options.reserve(entries_.size());
    for (auto& entry : entries_) {
        refresh(entry, scope);
        options.set(entry.key, entry.value);
    }
    // From here on a dynamic section resolves references to sections too.
    noteDynamic();
    return options;
}

void LiveSection::read(const SkinScope& scope, const LiveSections& sections, OptionTarget& target) {
    if (!isDynamic_ && !isPending_)
        return;
    isPending_ = false;
    const auto* style = raw_.find("MeterStyle"_key);
    const bool isOtherStyle = style ? *style != style_.text.raw() : !style_.text.raw().empty();
    if (isOtherStyle)
        style_ = makeEntry("MeterStyle", style ? *style : std::string());
    style_.isSet = set_.contains("MeterStyle");
    if (style_.isStale || !scope.isCurrent(style_.dependencies)) {
        const auto before = style_.value;
        refresh(style_, scope);
        if (style_.value != before)
            compiledRevision_ = 0;
    }
    if (isOtherStyle || !areStylesCurrent()) {
        for (const auto& key : compile(sections))
            target.removeOption(key);
    }
    // What the switch says now decides how the others are read.
    for (auto& entry : entries_) {
        if (equalsIgnoringCase(entry.key, "DynamicVariables"))
            readEntry(entry, scope, target);
    }
    noteDynamic();
    for (auto& entry : entries_)
        readEntry(entry, scope, target);
}

void LiveSection::readEntry(Entry& entry, const SkinScope& scope, OptionTarget& target) {
    if (!entry.isStale && (entry.text.isPlain() || scope.isCurrent(entry.dependencies)))
        return;
    refresh(entry, scope);
    target.setOption(entry.key, entry.value);
}

std::size_t LiveSections::add(LiveSection section) {
    positions_.insertIfAbsent(section.name(), sections_.size());
    sections_.push_back(std::move(section));
    return sections_.size() - 1;
}

LiveSection* LiveSections::find(std::string_view name) {
    return const_cast<LiveSection*>(std::as_const(*this).find(name));
}

const LiveSection* LiveSections::find(std::string_view name) const {
    const auto* found = positions_.find(name);
    return found ? &sections_[*found] : nullptr;
}

} // namespace Ostrel
