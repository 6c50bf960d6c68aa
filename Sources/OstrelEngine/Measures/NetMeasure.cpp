#include "OstrelEngine/Measures/NetMeasure.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/HostStatistics.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace Ostrel {

NetMeasure::NetMeasure(const MeasureDefinition& definition, std::string skinPath, HostStatistics& host)
    : BaseMeasure(definition, std::move(skinPath))
    , host_(host)
    , netType_(parseType(definition.measureType)) { }

NetMeasure::NetType NetMeasure::parseType(std::string_view measureType) {
    if (equalsIgnoringCase(measureType, "NETIN"))
        return NetType::NetIn;
    return equalsIgnoringCase(measureType, "NETOUT") ? NetType::NetOut : NetType::NetTotal;
}

std::uint64_t NetMeasure::bytes() const {
    const auto counters = host_.networkBytes().value_or(NetworkBytes());
    if (netType_ == NetType::NetTotal)
        return counters.in + counters.out;
    return netType_ == NetType::NetIn ? counters.in : counters.out;
}

void NetMeasure::update() {
    const auto now = bytes();
    const auto before = std::exchange(previousBytes_, now);
    if (!before)
        return;
    // When an interface goes away the difference wraps, and the peak keeps it: a rare spike is better than a guess.
    const auto delta = static_cast<double>(now - *before);
    publish(delta, "", false, 0, std::max(delta, value().maxValue));
}

} // namespace Ostrel
