#include "OstrelGUI/OstrelGUIApp.h"

#include "OstrelCore/Packages/SkinInput.h"
#include "OstrelEngine/Host/WidgetController.h"
#include "OstrelEngine/Players/MediaPlayerBridges.h"
#include "OstrelEngine/Runtime/SkinAtWork.h"
#include "OstrelGUI/Channel/SharedSettings.h"
#include "OstrelGUI/CrashGuard.h"
#include "OstrelGUI/OpenArguments.h"
#include "OstrelGUI/WidgetPreferences.h"
#include "OstrelPlatform/Platform.h"
#include "OstrelPlatform/UserDefaults.h"

#include <QGuiApplication>
#include <QScreen>

namespace Ostrel {

namespace {

Size primaryScreenSize() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    const QSize size = screen ? screen->size() : QSize();
    return {static_cast<double>(size.width()), static_cast<double>(size.height())};
}

} // namespace

OstrelGUIApp::OstrelGUIApp(const Platform& platform, DesktopPanels& desktop, UserDefaults& defaults, TrayItem& tray)
    : platform_(platform)
    , defaults_(defaults)
    , placement_(primaryScreenSize)
    , chosenPacks_(defaults)
    , fullWidgets_(chosenPacks_)
    , widgetManager_(platform, desktop, &fullWidgets_)
    , sessionController_(widgetManager_, defaults, platform)
    , library_(sessionController_, widgetManager_)
    , window_(WindowProcess::installedProgram(), library_, defaults, platform.mainQueue)
    , delegate_(window_, tray, platform.mainQueue) {
    connectPreferences(widgetManager_, defaults_);
    connectManager();
    delegate_.hasWidgets = [this] { return !widgetManager_.activeWidgets().empty(); };
    delegate_.isLibraryEmpty = [this] { return sessionController_.isLibraryEmpty(); };
    delegate_.terminate = [this] {
        if (onTerminate)
            onTerminate();
    };
    window_.onSettingChange = [this](const std::string& key) {
        if (key == SharedSettings::targetMediaPlayer)
            syncOverride();
        // A pack may run in another dialect from now on, or may do more or less.
        if (key == PackChoices::ChoicesKey || key == PackChoices::NewPacksKey)
            widgetManager_.refreshAll();
    };
}

OstrelGUIApp::~OstrelGUIApp() = default;

bool ChosenPacks::isAllowed(const std::string& root, Permission permission) const {
    const auto allowed = choices_.of(root).permissions.value_or(PackPermissions());
    switch (permission) {
    case Permission::Scripts:
        return allowed.scripts;
    case Permission::Web:
        return allowed.web;
    case Permission::Programs:
        return allowed.programs;
    case Permission::Files:
        return allowed.files;
    }
    return false;
}

void OstrelGUIApp::connectManager() {
    widgetManager_.chooseOrigin = [this](Size widget) { return placement_.choose(widget, frames()); };
    // The session remembers it first.
    widgetManager_.onWidgetStopped = [this, remember = widgetManager_.onWidgetStopped](const std::string& key) {
        remember(key);
        delegate_.widgetDidStop();
    };
}

std::vector<Rect> OstrelGUIApp::frames() const {
    std::vector<Rect> result;
    for (const auto& [key, controller] : widgetManager_.activeWidgets())
        if (const auto frame = controller->windowFrame())
            result.push_back(*frame);
    return result;
}

void OstrelGUIApp::syncOverride() const {
    if (platform_.mediaPlayers)
        platform_.mediaPlayers->setAppNameOverride(defaults_.string(SharedSettings::targetMediaPlayer));
}

void OstrelGUIApp::leaveOut(const EarlierEnd& earlier) {
    if (earlier.isOneTooMany()) {
        const std::string message = "Ostrel ended three times within a minute and started without widgets";
        printMessage(message);
        sessionController_.setAllFailed(message);
        window_.show();
    }
    if (earlier.skin.empty())
        return;
    printMessage(earlier.skin + " is not shown any more. " + earlier.message);
    sessionController_.setFailed(earlier.skin, earlier.message);
}

void OstrelGUIApp::start(const OpenArguments& arguments, const std::optional<EarlierEnd>& earlier) {
    syncOverride();
    if (earlier)
        leaveOut(*earlier);
    sessionController_.restoreIfNeeded();
    open(arguments);
}

void OstrelGUIApp::reopen(const OpenArguments& arguments) {
    if (arguments.paths().empty())
        return delegate_.applicationShouldHandleReopen();
    open(arguments);
}

void OstrelGUIApp::open(const OpenArguments& arguments) {
    bool areAllShown = true;
    placement_.beginTogether(arguments.skins.size());
    for (const auto& skin : arguments.skins)
        areAllShown = show(skin) && areAllShown;
    placement_.endTogether();
    // The window tells more of a skin that cannot be shown.
    if (!areAllShown)
        window_.show();
    if (!arguments.collections.empty())
        window_.open(arguments.collections);
    if (!arguments.skins.empty())
        window_.scan(arguments.skins);
}

bool OstrelGUIApp::show(const std::string& skin) {
    if (widgetManager_.isRunning(skin))
        return true;
    sessionController_.renderWidget(skin);
    if (widgetManager_.isRunning(skin))
        return true;
    // Once more, for the reason.
    DiagnosticCollector diagnostics;
    const SkinAtWork work(skin.c_str());
    loadSkinToRun(skin, diagnostics);
    return false;
}

void OstrelGUIApp::stopAll() {
    sessionController_.setTerminating();
    widgetManager_.stopAll();
}

} // namespace Ostrel
