#include "OstrelEngine/Measures/SysColorPluginMeasure.h"

#include "OstrelEngine/Measures/ColorText.h"
#include "OstrelPlatform/DesktopAppearance.h"
#include "OstrelPlatform/Platform.h"

#include <optional>
#include <string>

namespace Ostrel {

SysColorPluginMeasure::SysColorPluginMeasure(
    const MeasureDefinition& definition, std::string skinPath, const Platform& platform)
    : BaseMeasure(definition, std::move(skinPath))
    , appearance_(platform.appearance) {
    SysColorPluginMeasure::update();
}

void SysColorPluginMeasure::update() {
    const auto accent = appearance_ ? appearance_->accentColor() : std::nullopt;
    const auto color = accent.value_or(DefaultColor);
    if (shown_ == color)
        return;
    shown_ = color;
    publish(0, colorText(color), true, 0, 0);
}

} // namespace Ostrel
