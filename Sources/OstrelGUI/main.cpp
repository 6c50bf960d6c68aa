#include "OstrelCore/Packages/SkinInput.h"
#include "OstrelEngine/Meters/DecodedPictureColors.h"
#include "OstrelEngine/Players/MediaPlayerBridges.h"
#include "OstrelEngine/Sound/AudioLevelSpectrumSource.h"
#include "OstrelGUI/CrashGuard.h"
#include "OstrelGUI/OpenArguments.h"
#include "OstrelGUI/OstrelGUIApp.h"
#include "OstrelGUI/OstrelMenuBarMenuView.h"
#include "OstrelGUI/SingleInstance.h"
#include "OstrelGUI/StartEnvironment.h"
#include "OstrelGUI/TerminationSignals.h"
#include "OstrelPlatform/Linux/Desktop/QSettingsUserDefaults.h"
#include "OstrelPlatform/Linux/LinuxPlatform.h"
#include "OstrelPlatform/Linux/Players/LinuxPlayers.h"
#include "OstrelPlatform/Linux/Sound/LinuxSound.h"
#include "OstrelPlatform/Linux/StartPages.h"
#include "OstrelPlatform/Linux/Tray/LinuxTray.h"
#include "OstrelPlatform/Log.h"
#include "OstrelPlatform/MainQueue.h"
#include "OstrelPlatform/PlayerTransport.h"
#include "OstrelPlatform/SerialQueue.h"

#include <QGuiApplication>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

namespace {

enum ExitStatus { Done = 0, NothingLoaded = 1 };

/// The first pictures are on the screen by then, and are not held up by the bus.
constexpr double TrayDelaySeconds = 0.15;
/// By then the widgets have drawn and ticked.
constexpr double SecondsUntilStarted = 1.5;

/// Qt's way to say that there is no display is to abort.
void report(QtMsgType type, const QMessageLogContext&, const QString& text) {
    printMessage(text.trimmed().toStdString());
    if (type == QtFatalMsg)
        std::_Exit(NothingLoaded);
}

std::optional<std::string> environmentText(const char* name) {
    const char* value = std::getenv(name);
    return value ? std::optional<std::string>(value) : std::nullopt;
}

/// Absent where nothing can be trusted to find other instances by.
std::unique_ptr<SingleInstance> makeInstance() {
    std::error_code failed;
    const auto temporary = std::filesystem::temp_directory_path(failed).string();
    auto folder = SingleInstance::privateFolder(environmentText("XDG_RUNTIME_DIR"), temporary);
    return folder ? std::make_unique<SingleInstance>(std::move(*folder), SingleInstance::displayName()) : nullptr;
}

int runFirst(int count, char** values, SingleInstance* instance, const OpenArguments& arguments,
    const std::optional<EarlierEnd>& earlier) {
    qInstallMessageHandler(report);
    std::optional<StartEnvironment> environment(std::in_place);
    QGuiApplication application(count, values);
    environment.reset();
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QGuiApplication::setDesktopFileName("dev.ostrel.gui");

    LinuxPlatform platform;
    Platform ports = platform.ports();
    AudioLevelSpectrumSource sound(
        {[] { return LinuxSound::open(); }, ports.clock, ports.mainQueue, logToStandardError});
    ports.audioSpectrum = &sound;
    DecodedPictureColors pictures;
    ports.pictures = &pictures;
    QSettingsUserDefaults defaults;
    MediaPlayerBridges players({.makeTransport = [&ports] { return LinuxPlayers::makeTransport(ports); },
        .makeQueue = LinuxPlayers::makeQueue,
        .clock = ports.clock,
        .log = logToStandardError});
    ports.mediaPlayers = &players;
    // Not a quit, which panels could refuse as they refuse to be closed.
    const auto end = [] { QGuiApplication::exit(Done); };
    OstrelGUIApp* open = nullptr;
    OstrelMenuBarMenuView menu([&open] { open->openMainWindow(); }, end, ports.appearance);
    LinuxTray tray(menu.content());
    tray.onMenuRequest = [&menu](const QPoint& at) { menu.popUp(at); };
    OstrelGUIApp app(ports, platform.desktopPanels(), defaults, tray);
    open = &app;
    app.onTerminate = end;
    const TerminationSignals termination(end);

    std::optional<CrashGuard> guard(std::in_place);
    app.start(arguments, earlier);
    ports.mainQueue.postAfter(TrayDelaySeconds, [&] {
        tray.start();
        app.didFinishLaunching();
    });
    ports.mainQueue.postAfter(SecondsUntilStarted, releaseStartPages);
    if (instance)
        instance->listen([&app](const auto& paths) { app.reopen(OpenArguments::sort(paths)); });
    QGuiApplication::exec();
    guard.reset();
    app.stopAll();
    return Done;
}

int run(int count, char** values) {
    const auto earlier = CrashGuard::takeEarlierEnd();
    const std::vector<std::string> given(values + 1, values + count);
    const auto arguments = OpenArguments::sort(given);
    for (const auto& path : arguments.unreadable)
        printMessage("cannot load " + path);
    const auto paths = arguments.paths();
    if (paths.empty() && !given.empty())
        return NothingLoaded;

    const auto instance = makeInstance();
    switch (instance ? instance->start(paths) : SingleInstance::Role::First) {
    case SingleInstance::Role::First:
        return runFirst(count, values, instance.get(), arguments, earlier);
    case SingleInstance::Role::HandedOver:
        return Done;
    case SingleInstance::Role::Unanswered:
        printMessage("Ostrel is running already, but does not answer");
        return NothingLoaded;
    }
    return NothingLoaded;
}

} // namespace

} // namespace Ostrel

int main(int count, char** values) {
    return Ostrel::run(count, values);
}
