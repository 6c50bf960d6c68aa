#pragma once

#include <QFont>
#include <QPalette>

namespace Ostrel {

class DesktopAppearance;

/// What menus and text fields over widgets are painted with.
struct DesktopLook {
    QPalette palette;
    QFont font;

    /// As the desktop's settings have it; the toolkit's own where nothing is known of them, or where null is given. The
    /// first call may wait for the desktop's answer.
    static DesktopLook of(DesktopAppearance* appearance);
};

} // namespace Ostrel
