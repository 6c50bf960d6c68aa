#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"
#include "OstrelPlatform/HostStatistics.h"

#include <optional>
#include <string>

namespace Ostrel {

/// The load of all processors together since the update before, in per cent.
class CPUMeasure final : public BaseMeasure {
public:
    CPUMeasure(const MeasureDefinition& definition, std::string skinPath, HostStatistics& host);

    void update() override;

private:
    HostStatistics& host_;
    std::optional<CPUTicks> previousTicks_;
};

} // namespace Ostrel
