#pragma once

#include "OstrelEngine/Host/FullWidgets.h"
#include "OstrelEngine/Host/WidgetManager.h"
#include "OstrelGUI/AppDelegate.h"
#include "OstrelGUI/CrashGuard.h"
#include "OstrelGUI/PackChoices.h"
#include "OstrelGUI/Session/OstrelSessionController.h"
#include "OstrelGUI/Session/SessionWidgetLibrary.h"
#include "OstrelGUI/WidgetPlacement.h"
#include "OstrelGUI/WindowProcess.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

class DesktopPanels;
class TrayItem;
class UserDefaults;
struct OpenArguments;
struct Platform;

/// The user's choices for packs as the widgets ask for them.
class ChosenPacks final : public PackPolicy {
public:
    explicit ChosenPacks(UserDefaults& defaults)
        : choices_(defaults) { }

    bool runsFullDialect(const std::string& skinPath) const override {
        return choices_.dialectOf(skinPath) == Dialect::Full;
    }
    bool isAllowed(const std::string& root, Permission permission) const override;

private:
    PackChoices choices_;
};

/// The running application: the widgets, what is remembered of them, and the main window in its process.
class OstrelGUIApp {
public:
    /// All of them outlive the application.
    OstrelGUIApp(const Platform& platform, DesktopPanels& desktop, UserDefaults& defaults, TrayItem& tray);
    ~OstrelGUIApp();

    /// Shows the widgets of the last time and what the program was started with.
    /// What an earlier process of this start ended by, if it did, is not shown again by itself.
    void start(const OpenArguments& arguments, const std::optional<EarlierEnd>& earlier = std::nullopt);
    /// Once the widgets are up and the tray has been asked for a place.
    void didFinishLaunching() { delegate_.applicationDidFinishLaunching(); }
    /// What a later start was given; without any arguments the window comes forward.
    void reopen(const OpenArguments& arguments);
    void openMainWindow() { delegate_.openMainWindow(); }
    /// Stops every widget, as skins expect it when the program ends. They come back at the next start.
    void stopAll();

    /// Nothing is left that the user could reach.
    std::function<void()> onTerminate;

private:
    void leaveOut(const EarlierEnd& earlier);
    void open(const OpenArguments& arguments);
    /// False when the skin cannot be loaded, which has been told then.
    bool show(const std::string& skin);
    void connectManager();
    /// Lets the player that the user chose stand for those of all skins.
    void syncOverride() const;
    std::vector<Rect> frames() const;

    const Platform& platform_;
    UserDefaults& defaults_;
    WidgetPlacement placement_;
    ChosenPacks chosenPacks_;
    FullWidgets fullWidgets_;
    WidgetManager widgetManager_;
    OstrelSessionController sessionController_;
    SessionWidgetLibrary library_;
    WindowProcess window_;
    AppDelegate delegate_;
};

} // namespace Ostrel
