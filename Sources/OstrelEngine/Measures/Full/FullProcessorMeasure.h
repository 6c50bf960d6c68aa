#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelPlatform/HostStatistics.h"

#include <optional>

namespace Ostrel {

/// The load of all processors, or of the one that `Processor` names, in percent since the last update. A processor
/// that does not exist gives 0, and so does the first update.
class FullProcessorMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override;

private:
    int processor_ = 0;
    std::optional<ProcessorTimes> before_;
};

} // namespace Ostrel
