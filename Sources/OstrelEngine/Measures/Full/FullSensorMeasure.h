#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelPlatform/HostStatistics.h"

#include <optional>
#include <string>

namespace Ostrel {

/// The chips of the processor: temperatures, speed and load by core.
class FullCoreTempMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override;

private:
    double temperature() const;
    double load();

    /// In upper case.
    std::string type_;
    int core_ = 0;
    std::optional<ProcessorTimes> before_;
};

/// One sensor of the machine by kind and number.
class FullSpeedFanMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override;
};

} // namespace Ostrel
