#pragma once

#include <functional>
#include <string>
#include <vector>

class QImage;
class QPoint;

namespace Ostrel {

/// What the item shows.
struct TrayContent {
    struct Entry {
        std::string title;
        std::function<void()> action;
    };

    std::string title;
    std::string toolTip;
    /// The icon by which a desktop's theme knows the application.
    std::string iconName;
    /// The icon at so many pixels a side, ARGB with premultiplied alpha.
    std::function<QImage(int pixels)> drawIcon;
    /// Of the item's menu, in order.
    std::vector<Entry> menu;
};

/// The application's item in the desktop's tray. It appears when a tray does, at any time, and outlives trays. Main
/// thread.
class TrayItem {
public:
    virtual ~TrayItem() = default;
    /// Whether a tray shows it now.
    virtual bool isShown() const = 0;
    std::function<void()> onShownChange;
    /// The user chose the item itself.
    std::function<void()> onActivate;
    /// The user wants the menu, and the tray leaves it to the application to show it: at this point of the screen.
    std::function<void(const QPoint& at)> onMenuRequest;
};

} // namespace Ostrel
