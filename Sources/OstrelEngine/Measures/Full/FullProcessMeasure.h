#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"

#include <string>

namespace Ostrel {

/// 1 while a program of the name runs, else -1.
class FullProcessMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override;

private:
    /// In upper case, without ".exe".
    std::string wanted_;
};

} // namespace Ostrel
