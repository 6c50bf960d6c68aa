#pragma once

#include "OstrelPlatform/TrayItem.h"

#include <QPoint>

#include <functional>
#include <memory>

namespace Ostrel {

class ContextMenu;
class DesktopAppearance;

/// The tray item of the application and its menu.
class OstrelMenuBarMenuView {
public:
    /// Null: nothing is known of the desktop's looks. It outlives the menu.
    OstrelMenuBarMenuView(std::function<void()> open, std::function<void()> quit, DesktopAppearance* appearance);
    ~OstrelMenuBarMenuView();

    /// For whichever tray the desktop has.
    const TrayContent& content() const { return content_; }
    /// Shows the menu at this point of the screen, for a tray that does not.
    void popUp(const QPoint& at);

private:
    TrayContent content_;
    std::unique_ptr<ContextMenu> menu_;
    DesktopAppearance* appearance_;
};

} // namespace Ostrel
