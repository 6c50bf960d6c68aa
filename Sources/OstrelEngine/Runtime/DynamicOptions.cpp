#include "OstrelEngine/Runtime/DynamicOptions.h"

#include "OstrelEngine/Measures/MeasureProtocol.h"
#include "OstrelEngine/Runtime/MeterTable.h"
#include "OstrelEngine/Runtime/RuntimeExpressions.h"

#include <utility>

namespace Ostrel {

DynamicOptions::DynamicOptions(
    const MeterTable& meters, const MeasureTable& measures, const RuntimeExpressions& expressions)
    : meters_(meters)
    , measures_(measures)
    , expressions_(expressions) { }

void DynamicOptions::resolveDynamicOptions(std::size_t position) {
    auto& meter = meters_.at(position);
    if (!meter.takesResolvedOptions())
        return;
    resolutions_.resize(meters_.count());
    auto& resolution = resolutions_[position];
    const bool optionsChanged = resolution.optionsRevision != meter.optionsRevision();
    if (optionsChanged)
        resolution.sources = findSources(meter.options());
    std::uint64_t valueRevisions = 0;
    for (const auto* measure : resolution.sources)
        valueRevisions += measure->valueRevision();
    if (!optionsChanged && valueRevisions == resolution.valueRevisions)
        return;
    resolution.optionsRevision = meter.optionsRevision();
    resolution.valueRevisions = valueRevisions;
    Options resolved;
    resolved.reserve(meter.options().count());
    for (const auto& entry : meter.options())
        resolved.set(entry.key, expressions_.resolveMeasureReferences(entry.value));
    meter.setResolvedOptions(std::move(resolved));
}

std::vector<const BaseMeasure*> DynamicOptions::findSources(const Options& options) const {
    std::vector<const BaseMeasure*> sources;
    for (const auto& entry : options) {
        forEachMeasureReference(
            entry.value, measures_, [&](const MeasureReference& reference) { sources.push_back(reference.measure); });
    }
    return sources;
}

} // namespace Ostrel
