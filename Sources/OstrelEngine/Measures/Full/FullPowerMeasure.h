#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Measures/Full/TimeFormat.h"

#include <optional>

namespace Ostrel {

/// What the battery does, and how fast the processor is built to run.
class FullPowerMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override;

private:
    enum class State { None, ACLine, Status, Status2, Lifetime, Percent, Hz, MHz };

    void readOptions();

    State state_ = State::None;
    std::optional<TimeFormat> format_;
};

} // namespace Ostrel
