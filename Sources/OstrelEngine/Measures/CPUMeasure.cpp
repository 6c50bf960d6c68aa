#include "OstrelEngine/Measures/CPUMeasure.h"

#include "OstrelCore/Text/Numbers.h"

#include <string>
#include <utility>

namespace Ostrel {

namespace {

/// Counters may run backwards; the difference then wraps, as theirs would.
double difference(std::uint64_t now, std::uint64_t before) {
    return static_cast<double>(now - before);
}

double loadPercent(const CPUTicks& now, const CPUTicks& before) {
    const double user = difference(now.user, before.user);
    const double system = difference(now.system, before.system);
    const double idle = difference(now.idle, before.idle);
    const double nice = difference(now.nice, before.nice);
    const double total = user + system + idle + nice;
    return total <= 0 ? 0 : (user + system + nice) / total * 100;
}

} // namespace

CPUMeasure::CPUMeasure(const MeasureDefinition& definition, std::string skinPath, HostStatistics& host)
    : BaseMeasure(definition, std::move(skinPath))
    , host_(host) { }

void CPUMeasure::update() {
    const auto ticks = host_.cpuTicks().value_or(CPUTicks());
    const auto before = std::exchange(previousTicks_, ticks);
    if (!before)
        return;
    const double percent = loadPercent(ticks, *before);
    publish(percent, formatFixed(percent, 0), false, 0, 100);
}

} // namespace Ostrel
