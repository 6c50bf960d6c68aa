#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>

namespace Ostrel {

class MainQueue;
class MainWindow;
class TrayItem;

/// The application as an accessory of the desktop: widgets first, the main window hidden until it is wanted, a tray
/// item that stays. Sees to it that the user can always reach what is running. Main thread.
class AppDelegate {
public:
    /// How long a desktop may take to bring up its tray before the window is shown in its place; at login and when it
    /// starts its tray anew.
    static constexpr double TrayPatienceSeconds = 3;
    /// The same at a start that shows no widgets either.
    static constexpr double EmptyScreenPatienceSeconds = 0.5;

    /// All of them outlive the delegate, which is the tray's and the window's observer.
    AppDelegate(MainWindow& window, TrayItem& tray, MainQueue& mainQueue);
    ~AppDelegate();
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// Once the widgets are up. The window shows only where there is nothing else to see.
    void applicationDidFinishLaunching();
    /// A later start without paths: the user looks for the application.
    void applicationShouldHandleReopen();
    void widgetDidStop();
    /// "Open Ostrel"
    void openMainWindow();

    std::function<bool()> hasWidgets;
    /// Whether there is nothing that could be shown.
    std::function<bool()> isLibraryEmpty;
    /// Ends the application.
    std::function<void()> terminate;

private:
    bool isReachable() const;
    /// Shows the window after a while if there is no tray then, and `isNeeded`.
    void showWithoutTrayLater(double seconds, std::function<bool()> isNeeded);
    void windowVisibilityDidChange();

    MainWindow& window_;
    TrayItem& tray_;
    MainQueue& mainQueue_;
    /// Expires with the delegate.
    std::shared_ptr<void> life_ = std::make_shared<int>();
};

} // namespace Ostrel
