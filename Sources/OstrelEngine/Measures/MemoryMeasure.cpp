#include "OstrelEngine/Measures/MemoryMeasure.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/HostStatistics.h"

#include <algorithm>
#include <string>
#include <utility>

namespace Ostrel {

MemoryMeasure::MemoryMeasure(const MeasureDefinition& definition, std::string skinPath, HostStatistics& host)
    : BaseMeasure(definition, std::move(skinPath))
    , host_(host)
    , isSwap_(equalsIgnoringCase(definition.measureType, "SWAPMEMORY")) { }

void MemoryMeasure::update() {
    const auto figures = isSwap_ ? host_.swap() : host_.physicalMemory();
    if (!figures)
        return;
    // A machine without swap shows 0 of 1, so that bars have a range.
    publish(figures->used, "", false, 0, isSwap_ ? std::max(figures->total, 1.0) : figures->total);
}

} // namespace Ostrel
