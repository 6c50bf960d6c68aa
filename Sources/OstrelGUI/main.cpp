#include "OstrelCore/SkinInput.h"
#include "OstrelEngine/Measures/AudioLevelSpectrumSource.h"
#include "OstrelGUI/OstrelGUIApp.h"
#include "OstrelGUI/StartEnvironment.h"
#include "OstrelGUI/TerminationSignals.h"
#include "OstrelPlatform/Linux/LinuxPlatform.h"
#include "OstrelPlatform/Linux/LinuxSound.h"
#include "OstrelPlatform/Linux/StartPages.h"
#include "OstrelPlatform/Log.h"
#include "OstrelPlatform/MainQueue.h"

#include <QGuiApplication>

#include <cstdlib>
#include <optional>

namespace Ostrel {

namespace {

/// By then the widgets have drawn and ticked.
constexpr double SecondsUntilStarted = 2.5;

enum ExitStatus { Done = 0, NothingLoaded = 1, WrongUsage = 2 };

/// Qt's way to say that there is no display is to abort.
void report(QtMsgType type, const QMessageLogContext&, const QString& text) {
    printMessage(text.trimmed().toStdString());
    if (type == QtFatalMsg)
        std::_Exit(NothingLoaded);
}

int run(int count, char** values) {
    const std::vector<std::string> paths(values + 1, values + count);
    if (paths.empty()) {
        printMessage("usage: ostrel-gui PATH...");
        return WrongUsage;
    }
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
    OstrelGUIApp app(ports, platform.desktopPanels());
    // Not a quit, which panels could refuse as they refuse to be closed.
    const auto end = [] { QGuiApplication::exit(Done); };
    app.onLastStop = end;
    const TerminationSignals termination(end);
    if (!app.open(paths))
        return NothingLoaded;
    ports.mainQueue.postAfter(SecondsUntilStarted, releaseStartPages);
    QGuiApplication::exec();
    app.stopAll();
    return Done;
}

} // namespace

} // namespace Ostrel

int main(int count, char** values) {
    return Ostrel::run(count, values);
}
