#include "OstrelGUI/Window/WindowTheme.h"

#include "OstrelGUI/Window/Theme.h"
#include "OstrelPlatform/DesktopAppearance.h"

#include <QApplication>
#include <QStyle>
#include <QStyleFactory>

#include <algorithm>
#include <optional>

namespace Ostrel {

WindowTheme::WindowTheme(DesktopAppearance* appearance)
    : appearance_(appearance)
    , system_(QApplication::palette()) {
    // The one style that every desktop has and that takes colors as they are.
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    follow();
}

void WindowTheme::follow() {
    const QPalette wanted = Theme::palette(isDark(), accent());
    if (wanted != QApplication::palette())
        QApplication::setPalette(wanted);
}

bool WindowTheme::isDark() const {
    const std::optional<bool> preference = appearance_ ? appearance_->prefersDark() : std::nullopt;
    return preference.value_or(Theme::from(system_).isDark);
}

QColor WindowTheme::accent() const {
    const std::optional<RGBColor> chosen = appearance_ ? appearance_->accentColor() : std::nullopt;
    if (chosen) {
        const auto component = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
        return QColor::fromRgbF(component(chosen->red), component(chosen->green), component(chosen->blue));
    }
    const QColor highlight = system_.color(QPalette::Highlight);
    const bool isOfDesktop = highlight != QApplication::style()->standardPalette().color(QPalette::Highlight);
    return isOfDesktop ? highlight : Theme::defaultAccent();
}

} // namespace Ostrel
