#include "OstrelPlatform/Linux/Desktop/LinuxAppearance.h"

#include "OstrelPlatform/Linux/Desktop/SessionBus.h"
#include "OstrelPlatform/Linux/Desktop/SettingsPortal.h"

#include <QGuiApplication>
#include <QPalette>

#include <optional>
#include <utility>

namespace Ostrel {

namespace {

/// The toolkit's own highlight, which says nothing of the user's desktop.
constexpr QColor ToolkitHighlight(48, 140, 198);

std::optional<RGBColor> themeHighlight() {
    const QColor highlight = QGuiApplication::palette().color(QPalette::Active, QPalette::Highlight);
    if (highlight == ToolkitHighlight)
        return std::nullopt;
    return RGBColor{highlight.redF(), highlight.greenF(), highlight.blueF()};
}

} // namespace

LinuxAppearance::LinuxAppearance() = default;
LinuxAppearance::~LinuxAppearance() = default;

SettingsPortal* LinuxAppearance::settings() {
    if (!std::exchange(hasAsked_, true)) {
        if (const auto address = sessionBusAddress())
            settings_ = std::make_unique<SettingsPortal>(*address);
    }
    return settings_.get();
}

std::optional<RGBColor> LinuxAppearance::accentColor() {
    const auto accent = settings() ? settings_->accentColor() : std::nullopt;
    return accent ? accent : themeHighlight();
}

std::optional<double> LinuxAppearance::interfaceFontSize() {
    return settings() ? settings_->interfaceFontSize() : std::nullopt;
}

std::optional<bool> LinuxAppearance::prefersDark() {
    return settings() ? settings_->prefersDark() : std::nullopt;
}

} // namespace Ostrel
