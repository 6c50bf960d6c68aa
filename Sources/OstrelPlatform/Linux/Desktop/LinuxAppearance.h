#pragma once

#include "OstrelPlatform/DesktopAppearance.h"

#include <memory>
#include <optional>

namespace Ostrel {

class SettingsPortal;

/// What the desktop's settings say, and where they name no accent color, the highlight of a platform theme's palette.
/// Connects to the bus at the first question. Lives while the application object does.
class LinuxAppearance final : public DesktopAppearance {
public:
    LinuxAppearance();
    ~LinuxAppearance() override;

    std::optional<RGBColor> accentColor() override;
    std::optional<bool> prefersDark() override;
    std::optional<double> interfaceFontSize() override;

private:
    /// Null without a bus.
    SettingsPortal* settings();

    std::unique_ptr<SettingsPortal> settings_;
    bool hasAsked_ = false;
};

} // namespace Ostrel
