#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"

namespace Ostrel {

/// How many items or bytes lie in the trash. Emptying it needs the permission to change files.
class FullRecycleManagerMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override;
    bool executeCommand(std::string_view command) override;
};

} // namespace Ostrel
