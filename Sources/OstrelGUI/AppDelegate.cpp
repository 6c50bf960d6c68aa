#include "OstrelGUI/AppDelegate.h"

#include "OstrelGUI/MainWindow.h"
#include "OstrelPlatform/MainQueue.h"
#include "OstrelPlatform/TrayItem.h"

namespace Ostrel {

AppDelegate::AppDelegate(MainWindow& window, TrayItem& tray, MainQueue& mainQueue)
    : window_(window)
    , tray_(tray)
    , mainQueue_(mainQueue) {
    window_.onVisibilityChange = [this] { windowVisibilityDidChange(); };
    tray_.onActivate = [this] { openMainWindow(); };
    // Widgets alone are left alone: a second start reaches them too.
    tray_.onShownChange = [this] { showWithoutTrayLater(TrayPatienceSeconds, [this] { return !hasWidgets(); }); };
}

AppDelegate::~AppDelegate() {
    window_.onVisibilityChange = nullptr;
    tray_.onActivate = nullptr;
    tray_.onShownChange = nullptr;
}

bool AppDelegate::isReachable() const {
    return tray_.isShown() || window_.isVisible();
}

void AppDelegate::applicationDidFinishLaunching() {
    if (isLibraryEmpty())
        return openMainWindow();
    showWithoutTrayLater(hasWidgets() ? TrayPatienceSeconds : EmptyScreenPatienceSeconds, [] { return true; });
}

void AppDelegate::applicationShouldHandleReopen() {
    openMainWindow();
}

void AppDelegate::openMainWindow() {
    window_.show();
    // It could not be started. Better to end than to stay where nobody finds it.
    if (!isReachable() && !hasWidgets())
        terminate();
}

void AppDelegate::widgetDidStop() {
    if (hasWidgets())
        return;
    // A skin that is started anew has stopped first.
    mainQueue_.post([this, life = std::weak_ptr(life_)] {
        if (!life.expired() && !hasWidgets() && !isReachable())
            openMainWindow();
    });
}

void AppDelegate::showWithoutTrayLater(double seconds, std::function<bool()> isNeeded) {
    if (isReachable())
        return;
    mainQueue_.postAfter(seconds, [this, life = std::weak_ptr(life_), isNeeded = std::move(isNeeded)] {
        if (!life.expired() && !isReachable() && isNeeded())
            openMainWindow();
    });
}

void AppDelegate::windowVisibilityDidChange() {
    // The user closed the last thing that there was.
    if (!isReachable() && !hasWidgets())
        terminate();
}

} // namespace Ostrel
