#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"

namespace Ostrel {

/// The link of a wireless adapter, as far as the kernel tells it: its quality. Names of networks tell where a person
/// is, and are not told.
class FullWiFiMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override;
};

} // namespace Ostrel
