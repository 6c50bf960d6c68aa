#include "OstrelCore/Text/Text.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelEngine/Full/FullSkin.h"
#include "OstrelEngine/Runtime/GroupNames.h"

#include <algorithm>
#include <cstdint>
#include <string>

// What actions do to a running skin of the full dialect.

namespace Ostrel {

namespace {

bool switched(Switch action, bool current) {
    return action == Switch::Toggle ? !current : action == Switch::On;
}

/// The places of the entries that a bang means. A copy: what is done to them may change their groups.
template <typename Table> std::vector<std::size_t> chosen(const Table& table, const SectionChoice& choice) {
    std::vector<std::size_t> places;
    if (choice.kind == SectionChoice::Kind::Name) {
        if (const auto place = table.position(choice.name))
            places.push_back(*place);
        return places;
    }
    const auto group = GroupNames::normalizedGroupName(choice.name);
    for (std::size_t i = 0; i < table.count(); ++i) {
        if (choice.kind == SectionChoice::Kind::All || std::ranges::count(table.entry(i).groups, group) > 0)
            places.push_back(i);
    }
    return places;
}

} // namespace

std::vector<std::size_t> FullSkin::chosenMeasures(const SectionChoice& choice) const {
    return chosen(measures_, choice);
}

std::vector<std::size_t> FullSkin::chosenMeters(const SectionChoice& choice) const {
    return chosen(meters_, choice);
}

void FullSkin::setVariable(std::string_view name, std::string_view value) {
    if (!variables_.set(name, value))
        log(LogLevel::Warning, {}, "The variable cannot be set: " + std::string(name));
}

void FullSkin::setOption(const SectionChoice& sections, std::string_view key, std::string_view value) {
    if (sections.kind == SectionChoice::Kind::Name && equalsIgnoringCase(sections.name, "Rainmeter")) {
        // Only the items of the context menu follow a bang.
        auto* section = sections_.find("Rainmeter");
        if (section && hasPrefixIgnoringCase(key, "CONTEXT"))
            section->setOption(key, value);
        return;
    }
    for (const auto position : chosenMeasures(sections)) {
        auto& entry = measures_.entry(position);
        sections_.at(entry.section).setOption(key, value);
        entry.actions.optionWasSet(key);
        // Though the text may be what it was, the option speaks last.
        if (equalsIgnoringCase(key, "Disabled"))
            entry.disabledText.reset();
        else if (equalsIgnoringCase(key, "Paused"))
            entry.pausedText.reset();
        entry.optionsRevision.reset();
    }
    for (const auto position : chosenMeters(sections)) {
        auto& entry = meters_.entry(position);
        sections_.at(entry.section).setOption(key, value);
        if (equalsIgnoringCase(key, "Hidden")) {
            entry.hiddenText.reset();
            entry.optionsRevision.reset();
        }
    }
}

void FullSkin::switchMeters(const SectionChoice& meters, Switch shown) {
    for (const auto position : chosenMeters(meters)) {
        auto& entry = meters_.entry(position);
        const bool isHidden = !switched(shown, !entry.isHidden);
        if (isHidden == entry.isHidden)
            continue;
        entry.isHidden = isHidden;
        layout_.meterDidChange(position);
    }
}

void FullSkin::moveMeter(std::string_view meter, double x, double y) {
    const auto position = meters_.position(meter);
    if (!position)
        return;
    layout_.move(*position, x, y);
    // The window follows at the next update or redraw, also where it is fitted only once.
    hasWindowSize_ = false;
}

void FullSkin::updateMeters(const SectionChoice& meters) {
    for (const auto position : chosenMeters(meters))
        updateMeter(position, Cause::Bang);
}

void FullSkin::changeMouseActions(const SectionChoice& meters, std::string_view names, MouseActionChange change) {
    if (meters.kind == SectionChoice::Kind::Name && equalsIgnoringCase(meters.name, "Rainmeter"))
        return mouseActions_.change(meters_.count(), names, change);
    for (const auto position : chosenMeters(meters))
        mouseActions_.change(position, names, change);
}

void FullSkin::switchMeasures(const SectionChoice& measures, Switch enabled) {
    for (const auto position : chosenMeasures(measures)) {
        auto& entry = measures_.entry(position);
        setDisabled(entry, !switched(enabled, !entry.isDisabled));
        // A number falls at the next cycle; what shows 0 anyway, as a timer does, stops at once.
        if (auto& measure = measures_.at(position); entry.isDisabled && measure.value().numericValue == 0)
            measure.readAsZero();
    }
}

void FullSkin::pauseMeasures(const SectionChoice& measures, Switch paused) {
    for (const auto position : chosenMeasures(measures)) {
        auto& entry = measures_.entry(position);
        entry.isPaused = switched(paused, entry.isPaused);
    }
}

void FullSkin::updateMeasures(const SectionChoice& measures) {
    for (const auto position : chosenMeasures(measures))
        updateMeasure(position, Cause::Bang);
}

void FullSkin::commandMeasure(std::string_view measure, std::string_view arguments) {
    auto* found = measures_.find(measure);
    if (!found)
        return log(LogLevel::Warning, {}, "!CommandMeasure: there is no measure " + std::string(measure));
    found->executeCommand(arguments);
}

bool FullSkin::isInGroup(std::string_view group) const {
    const auto groups = GroupNames::parseGroups(skinOption("Group"_key).value_or(""));
    return std::ranges::count(groups, GroupNames::normalizedGroupName(group)) > 0;
}

std::vector<SkinMenuItem> FullSkin::menuItems() const {
    constexpr std::size_t MaxItems = 25;
    constexpr std::int64_t MaxLetters = 30;
    std::vector<SkinMenuItem> items;
    const auto* section = sections_.find("Rainmeter");
    for (std::size_t number = 1; section && number <= MaxItems; ++number) {
        const auto tail = number == 1 ? std::string() : formatInteger(number);
        const auto* written = section->effective("ContextTitle" + tail);
        const auto* action = section->effective("ContextAction" + tail);
        auto title = written ? scope_.resolveNow(*written, section->name(), ReferenceKinds::All) : std::string();
        title = std::string(trimmed(title));
        const bool isLine = !title.empty() && title.find_first_not_of('-') == std::string::npos;
        if (title.empty() || (!isLine && !action))
            break;
        if (isLine)
            title.clear();
        else if (const auto start = characterPrefix(title, MaxLetters); start.size() < title.size())
            title = std::string(start) + "...";
        items.push_back({std::move(title), isLine ? std::string() : *action});
    }
    return items;
}

} // namespace Ostrel
