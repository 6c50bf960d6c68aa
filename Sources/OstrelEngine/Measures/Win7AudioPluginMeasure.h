#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <string>
#include <utility>

namespace Ostrel {

/// Stands for the plugin that names and switches output devices: there is one device here, and it takes no commands.
class Win7AudioPluginMeasure final : public BaseMeasure {
public:
    Win7AudioPluginMeasure(const MeasureDefinition& definition, std::string skinPath)
        : BaseMeasure(definition, std::move(skinPath)) {
        publishDevice();
    }

    void update() override { publishDevice(); }

private:
    void publishDevice() { publish(0, "Default Output", true, 0, 0); }
};

} // namespace Ostrel
