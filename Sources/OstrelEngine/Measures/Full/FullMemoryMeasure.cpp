#include "OstrelEngine/Measures/Full/FullMemoryMeasure.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/HostStatistics.h"
#include "OstrelPlatform/Platform.h"

namespace Ostrel {

FullMemoryMeasure::FullMemoryMeasure(const MeasureDefinition& definition, FullMeasureHost& host)
    : FullMeasure(definition, host)
    , includesSwap_(!equalsIgnoringCase(definition.measureType, "PHYSICALMEMORY")) { }

void FullMemoryMeasure::update() {
    if (optionsDidChange())
        showsTotal_ = isOn("Total"_key, false);
    auto& statistics = host().platform().hostStatistics;
    auto figures = statistics.physicalMemory().value_or(MemoryFigures());
    if (includesSwap_) {
        const auto swap = statistics.swap().value_or(MemoryFigures());
        figures.used += swap.used;
        figures.total += swap.total;
    }
    publishNumber(showsTotal_ ? figures.total : figures.used, 0, figures.total);
}

} // namespace Ostrel
