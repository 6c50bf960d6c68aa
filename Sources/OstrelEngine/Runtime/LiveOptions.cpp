#include "OstrelEngine/Runtime/LiveOptions.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Runtime/GroupIndex.h"
#include "OstrelEngine/Runtime/LayoutResolver.h"
#include "OstrelEngine/Runtime/MeasureTable.h"
#include "OstrelEngine/Runtime/MeterTable.h"
#include "OstrelEngine/Runtime/Publication.h"
#include "OstrelEngine/Runtime/RuntimeExpressions.h"

#include <string>

namespace Ostrel {

namespace {

bool isGroupKey(std::string_view key) {
    return equalsIgnoringCase(key, "GROUP");
}

bool isHiddenKey(std::string_view key) {
    return equalsIgnoringCase(key, "HIDDEN");
}

bool differs(const Options& options, std::string_view key, std::string_view value) {
    const auto* current = options.find(key);
    return !current || *current != value;
}

} // namespace

bool LiveOptions::setOption(std::string_view sectionName, std::string_view key, std::string_view value) {
    const auto section = trimmed(sectionName);
    if (section.empty() || equalsIgnoringCase(section, "RAINMETER"))
        return false;
    if (const auto meter = parts_.meters.position(section))
        return setMeterOption(parts_.meters.at(*meter), key, value);
    const auto measure = parts_.measures.position(section);
    return measure && setMeasureOption(*measure, key, value);
}

bool LiveOptions::setMeterOption(MeterRenderer& meter, std::string_view key, std::string_view value) {
    if (!isHiddenKey(key) && !differs(meter.options(), key, value))
        return false;
    parts_.publication.markChanged();
    const bool changed = writeMeterOption(meter, key, value);
    if (isGroupKey(key))
        groups_.invalidateGroupMembershipCaches();
    if (LayoutResolver::shouldMeterOptionTriggerLayout(key))
        parts_.layout.layoutOptionsDidChange();
    return changed;
}

/// True when the text was another, or the meter was shown or hidden by it.
bool LiveOptions::writeMeterOption(MeterRenderer& meter, std::string_view key, std::string_view value) {
    const bool isDifferent = differs(meter.options(), key, value);
    meter.setOption(key, value);
    // A meter may have been shown or hidden by other means since, so the same text acts again.
    const bool isToggled = isHiddenKey(key) && setMeterVisible(meter.name(), !parts_.expressions.isSwitchedOn(value));
    return isDifferent || isToggled;
}

bool LiveOptions::setMeasureOption(std::size_t position, std::string_view key, std::string_view value) {
    auto& measure = parts_.measures.at(position);
    if (!differs(measure.options(), key, value))
        return false;
    measure.setOption(key, value);
    if (isGroupKey(key))
        groups_.invalidateGroupMembershipCaches();
    if (equalsIgnoringCase(key, "UPDATEDIVIDER"))
        measure.setUpdateDivider(BaseMeasure::parseUpdateDivider(value));
    client_.measureOptionDidChange(position);
    return true;
}

bool LiveOptions::setOptionOfGroup(std::string_view group, std::string_view key, std::string_view value) {
    bool changedMeter = false;
    for (const auto position : groups_.meterIndices(group)) {
        // Unlike for a single meter nothing is marked as changed: the bang's own publication shows it.
        if (writeMeterOption(parts_.meters.at(position), key, value))
            changedMeter = true;
    }
    if (changedMeter && isGroupKey(key))
        groups_.invalidateGroupMembershipCaches();
    if (changedMeter && LayoutResolver::shouldMeterOptionTriggerLayout(key))
        parts_.layout.layoutOptionsDidChange();
    for (const auto position : groups_.measureIndices(group))
        setMeasureOption(position, key, value);
    return changedMeter;
}

bool LiveOptions::setVariable(std::string_view name, std::string_view value) {
    const auto* current = parts_.variables.find(name);
    if (current && *current == value)
        return false;
    parts_.variables.set(name, std::string(value));
    if (!parts_.layout.needsResolution() && parts_.layout.shouldVariableTriggerLayout(name))
        parts_.layout.markLayoutDirty();
    client_.liveStateDidChange();
    return true;
}

bool LiveOptions::setMeterVisible(std::string_view name, bool isVisible) {
    if (!parts_.meters.setVisible(name, isVisible))
        return false;
    parts_.publication.markChanged();
    client_.liveStateDidChange();
    return true;
}

} // namespace Ostrel
