#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelPlatform/HostDetails.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// The interface that `wanted` means: "Best" or an unknown name the one that leads out, wired before wireless, else a
/// name, else the number of one from 1 on. Null when there is none. Not for "0", which means all.
const NetworkInterface* chosenInterface(const std::vector<NetworkInterface>& interfaces, std::string_view wanted);

/// Bytes a second over an interface or over all, or with `Cumulative` the bytes since it came up.
class FullNetMeasure final : public FullMeasure {
public:
    FullNetMeasure(const MeasureDefinition& definition, FullMeasureHost& host);

    void update() override;

private:
    struct Traffic {
        std::string interface;
        double bytes = 0;
        /// Monotonic seconds.
        double time = 0;
    };

    void readOptions();
    Traffic traffic() const;

    bool countsIn_;
    bool countsOut_;
    std::string interface_;
    bool isCumulative_ = false;
    double bitsPerUnit_ = 1;
    double minimum_ = 0;
    std::optional<double> maximum_;
    std::optional<Traffic> before_;
    double peak_ = 0;
};

} // namespace Ostrel
