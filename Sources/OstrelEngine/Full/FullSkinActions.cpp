#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Full/FullSkin.h"
#include "OstrelEngine/Runtime/GroupNames.h"

#include <algorithm>

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
    if (const auto position = meters_.position(meter))
        layout_.move(*position, x, y);
}

void FullSkin::updateMeters(const SectionChoice& meters) {
    for (const auto position : chosenMeters(meters))
        updateMeter(position, Cause::Bang);
}

void FullSkin::switchMeasures(const SectionChoice& measures, Switch enabled) {
    for (const auto position : chosenMeasures(measures)) {
        auto& entry = measures_.entry(position);
        setDisabled(entry, !switched(enabled, !entry.isDisabled));
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

} // namespace Ostrel
