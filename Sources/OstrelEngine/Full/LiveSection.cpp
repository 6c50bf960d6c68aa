#include "OstrelEngine/Full/LiveSection.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"

#include <algorithm>
#include <array>
#include <tuple>
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
    const bool wasSet = set_.contains(key);
    set_.set(key, true);
    if (const auto* written = raw_.find(key); written && *written == value) {
        // What is set sees more kinds of references than the same text in the file of a static section.
        if (!wasSet)
            compiledRevision_ = 0;
        return;
    }
    raw_.set(key, std::string(value));
    const bool wasCompiled = std::exchange(compiledRevision_, 0) == revision_;
    ++revision_;
    const auto entry = std::ranges::find_if(
        entries_, [&](const Entry& candidate) { return equalsIgnoringCase(candidate.key, key); });
    if (!wasCompiled || entry == entries_.end())
        return;
    *entry = makeEntry(std::string(entry->key), *raw_.find(key));
    entry->isSet = true;
    compiledRevision_ = revision_;
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

std::string LiveSection::resolve(Entry& entry, const SkinScope& scope) const {
    entry.isStale = false;
    return entry.text.isPlain() ? entry.text.raw() : scope.resolve(entry.text, name_, kinds(entry), entry.dependencies);
}

bool LiveSection::areStylesCurrent() const {
    return compiledRevision_ == revision_
        && std::ranges::all_of(styles_, [](const auto& style) { return style.first->revision() == style.second; });
}

void LiveSection::findStyles(const LiveSections& sections) {
    styles_.clear();
    const auto names = split(styleNames_, '|');
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

/// Whether the section itself or one of the first styles has the option.
bool LiveSection::isTaken(std::string_view key, std::uint32_t hash, std::size_t styleCount) const {
    if (raw_.find(key, hash))
        return true;
    for (std::size_t i = 0; i < styleCount; ++i) {
        if (styles_[i].first->raw_.find(key, hash))
            return true;
    }
    return false;
}

std::vector<std::string> LiveSection::compile(const LiveSections& sections) {
    findStyles(sections);
    compiledRevision_ = revision_;
    auto before = std::exchange(entries_, {});
    CaseInsensitiveDictionary<std::size_t> old;
    for (std::size_t i = 0; i < before.size(); ++i)
        old.set(before[i].key, i);
    const auto add = [&](const std::string& key, const std::string& raw, bool isSet) {
        const auto* place = before.empty() ? nullptr : old.find(key);
        if (place && before[*place].text.raw() == raw)
            entries_.push_back(std::move(before[*place]));
        else
            entries_.push_back(makeEntry(key, raw));
        if (place)
            before[*place].key.clear();
        auto& entry = entries_.back();
        entry.isStale = entry.isStale || entry.isSet != isSet;
        entry.isSet = isSet;
    };
    entries_.reserve(raw_.count());
    for (const auto& [key, raw, hash] : raw_)
        add(key, raw, set_.contains(key));
    for (std::size_t i = 0; i < styles_.size(); ++i) {
        for (const auto& [key, raw, hash] : styles_[i].first->raw_) {
            if (!isTaken(key, hash, i) && !isKindOption(key) && !equalsIgnoringCase(key, "MeterStyle"))
                add(key, raw, false);
        }
    }
    std::vector<std::string> gone;
    for (const auto& [key, place, hash] : old) {
        if (!before[place].key.empty() && !isTaken(key, hash, styles_.size()))
            gone.push_back(key);
    }
    return gone;
}

void LiveSection::noteDynamic(std::string_view text) {
    const bool isDynamic = OptionValues::isOn(text).value_or(false);
    if (std::exchange(isDynamic_, isDynamic) == isDynamic)
        return;
    for (auto& entry : entries_)
        entry.isStale = true;
}

Options LiveSection::readAtLoad(const SkinScope& scope, const LiveSections& sections) {
    if (const auto* style = raw_.find("MeterStyle"_key)) {
        style_ = makeEntry("MeterStyle", *style);
        styleNames_ = resolve(style_, scope);
    }
    compile(sections);
    Options options;
    options.reserve(entries_.size());
    for (auto& entry : entries_)
        options.set(entry.key, resolve(entry, scope));
    // From here on a dynamic section resolves references to sections too.
    noteDynamic(option(options, "DynamicVariables"_key).value_or(""));
    return options;
}

void LiveSection::read(const SkinScope& scope, const LiveSections& sections, OptionTarget& target) {
    const bool isCurrent = !isPending_ && isWatching_ && areStylesCurrent() && scope.isCurrent(watched_);
    if (!isToBeRead() || isCurrent)
        return;
    isPending_ = false;
    const auto* style = raw_.find("MeterStyle"_key);
    if (style ? *style != style_.text.raw() : !style_.text.raw().empty())
        style_ = makeEntry("MeterStyle", style ? *style : std::string());
    style_.isSet = set_.contains("MeterStyle");
    if (style_.isStale || !scope.isCurrent(style_.dependencies)) {
        const auto before = std::exchange(styleNames_, resolve(style_, scope));
        if (styleNames_ != before)
            compiledRevision_ = 0;
    }
    if (!areStylesCurrent()) {
        for (const auto& key : compile(sections)) {
            target.removeOption(key);
            if (equalsIgnoringCase(key, "DynamicVariables"))
                noteDynamic({});
        }
    }
    readEntries(scope, target);
    watch();
}

void LiveSection::readEntries(const SkinScope& scope, OptionTarget& target) {
    // What the switch says now decides how the others are read.
    for (auto& entry : entries_) {
        if (isToBeRead(entry, scope) && equalsIgnoringCase(entry.key, "DynamicVariables")) {
            const auto text = resolve(entry, scope);
            target.setOption(entry.key, text);
            noteDynamic(text);
        }
    }
    for (auto& entry : entries_) {
        if (isToBeRead(entry, scope))
            target.setOption(entry.key, resolve(entry, scope));
    }
}

void LiveSection::watch() {
    using Item = ReferenceDependencies::Item;
    isWatching_ = true;
    watched_.clear();
    const auto add = [this](const Entry& entry) {
        watched_.isVolatile = watched_.isVolatile || entry.isStale || entry.dependencies.isVolatile;
        watched_.items.insert(watched_.items.end(), entry.dependencies.items.begin(), entry.dependencies.items.end());
    };
    add(style_);
    for (const auto& entry : entries_)
        add(entry);
    const auto key = [](const Item& item) { return std::tuple(item.kind, item.position, item.revision); };
    std::ranges::sort(watched_.items, {}, key);
    const auto rest = std::ranges::unique(watched_.items, {}, key);
    watched_.items.erase(rest.begin(), rest.end());
}

bool LiveSection::isToBeRead(const Entry& entry, const SkinScope& scope) {
    return entry.isStale || !(entry.text.isPlain() || scope.isCurrent(entry.dependencies));
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
