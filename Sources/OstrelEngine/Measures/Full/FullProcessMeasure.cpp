#include "OstrelEngine/Measures/Full/FullProcessMeasure.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/HostDetails.h"
#include "OstrelPlatform/HostStatistics.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>

namespace Ostrel {

void FullProcessMeasure::update() {
    if (optionsDidChange()) {
        auto written = trimmed(text("ProcessName"_key));
        written.remove_prefix(written.find_last_of("\\/") + 1);
        if (hasSuffixIgnoringCase(written, ".EXE"))
            written.remove_suffix(4);
        wanted_ = upperCased(written);
    }
    auto* details = host().platform().hostStatistics.details();
    // Skins ask for the shell of the desktop to see whether there is one.
    bool isRunning = wanted_ == "EXPLORER";
    if (!isRunning && details && !wanted_.empty()) {
        isRunning = std::ranges::any_of(details->processes().processes,
            [this](const ProcessSample& process) { return equalsIgnoringCase(process.name, wanted_); });
    }
    publishNumber(isRunning ? 1 : -1);
}

} // namespace Ostrel
