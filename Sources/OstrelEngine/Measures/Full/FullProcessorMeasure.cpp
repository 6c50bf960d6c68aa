#include "OstrelEngine/Measures/Full/FullProcessorMeasure.h"

#include "OstrelPlatform/Platform.h"

#include <utility>

namespace Ostrel {

namespace {

/// Idle time of a processor may run backwards by a tick; the load is then 0 or 100, never a wrap.
double loadPercent(const ProcessorTimes& now, const ProcessorTimes& before) {
    const double busy = now.busy > before.busy ? static_cast<double>(now.busy - before.busy) : 0;
    const double idle = now.idle > before.idle ? static_cast<double>(now.idle - before.idle) : 0;
    return busy + idle > 0 ? busy / (busy + idle) * 100 : 0;
}

} // namespace

void FullProcessorMeasure::update() {
    if (optionsDidChange()) {
        const int processor = integer("Processor"_key, 0);
        if (std::exchange(processor_, processor) != processor)
            before_.reset();
    }
    const auto& times = host().platform().hostStatistics.processors();
    const auto position = static_cast<std::size_t>(processor_);
    if (processor_ < 0 || position >= times.size())
        return publishNumber(0, 0, 100);
    const auto before = std::exchange(before_, times[position]);
    publishNumber(before ? loadPercent(times[position], *before) : 0, 0, 100);
}

} // namespace Ostrel
