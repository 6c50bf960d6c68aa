#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"
#include "OstrelPlatform/RGBColor.h"

#include <optional>
#include <string>

namespace Ostrel {

class DesktopAppearance;

/// The accent color of the user's desktop, from the first moment on; a plain blue where the desktop has none.
class SysColorPluginMeasure final : public BaseMeasure {
public:
    static constexpr RGBColor DefaultColor{0, 122 / 255.0, 1};

    SysColorPluginMeasure(const MeasureDefinition& definition, std::string skinPath, const Platform& platform);

    void update() override;

private:
    /// Null where the desktop tells nothing of how it looks.
    DesktopAppearance* appearance_;
    std::optional<RGBColor> shown_;
};

} // namespace Ostrel
