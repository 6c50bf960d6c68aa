#include "OstrelEngine/Measures/Full/FullWiFiMeasure.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/HostDetails.h"
#include "OstrelPlatform/HostStatistics.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <string>
#include <vector>

namespace Ostrel {

void FullWiFiMeasure::update() {
    auto* details = host().platform().hostStatistics.details();
    const auto type = upperCased(trimmed(text("WiFiInfoType"_key)));
    std::vector<std::string> adapters;
    for (const auto& interface : details ? details->networkInterfaces() : std::vector<NetworkInterface>()) {
        if (interface.isWireless)
            adapters.push_back(interface.name);
    }
    const int wanted = integer("WiFiIntfID"_key, 0);
    const bool exists = wanted >= 0 && static_cast<std::size_t>(wanted) < adapters.size();
    if (type == "QUALITY")
        return publishNumber(exists ? details->wirelessQuality(adapters[static_cast<std::size_t>(wanted)]) : 0, 0, 100);
    if (type == "TXRATE" || type == "RXRATE")
        return publishNumber(
            exists ? std::max(0.0, details->adapter(adapters[static_cast<std::size_t>(wanted)]).speed) / 1000 : 0);
    if (type == "ENCRYPTION" || type == "AUTH" || type == "PHY")
        return publishText("???", 0);
    publishText("", 0);
}

} // namespace Ostrel
