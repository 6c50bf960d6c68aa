#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"

namespace Ostrel {

/// A color of the desktop: the accent for what windows are marked with, else the role's color in light or dark.
class FullSysColorMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override;
};

} // namespace Ostrel
