#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <string>
#include <utility>

namespace Ostrel {

/// Yields nothing: the running skin reads mouse actions from its options.
class MousePluginMeasure final : public BaseMeasure {
public:
    MousePluginMeasure(const MeasureDefinition& definition, std::string skinPath)
        : BaseMeasure(definition, std::move(skinPath)) {
        publish(0, "", false, 0, 0);
    }

    bool takesMouseEvents() const override { return true; }
};

} // namespace Ostrel
