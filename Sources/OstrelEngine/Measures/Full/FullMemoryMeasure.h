#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"

namespace Ostrel {

/// Bytes in use of the memory alone, or of memory and swap together; with `Total` the bytes that there are.
class FullMemoryMeasure final : public FullMeasure {
public:
    FullMemoryMeasure(const MeasureDefinition& definition, FullMeasureHost& host);

    void update() override;

private:
    bool includesSwap_;
    bool showsTotal_ = false;
};

} // namespace Ostrel
