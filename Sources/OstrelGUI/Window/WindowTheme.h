#pragma once

#include <QPalette>

namespace Ostrel {

class DesktopAppearance;

/// Dresses the application as the desktop likes it: light or dark, and in its accent color. One in a process.
class WindowTheme {
public:
    /// Null: what the toolkit knows of the desktop alone. The appearance outlives the theme.
    explicit WindowTheme(DesktopAppearance* appearance);

    /// Takes over what the desktop says now. Call when the user comes back to the window: the desktop's settings are
    /// changed elsewhere.
    void follow();

private:
    bool isDark() const;
    QColor accent() const;

    DesktopAppearance* appearance_;
    /// As the toolkit had it of the desktop, before ours.
    QPalette system_;
};

} // namespace Ostrel
