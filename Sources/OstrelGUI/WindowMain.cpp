#include "OstrelCore/Packages/SkinInput.h"
#include "OstrelGUI/Channel/WindowClient.h"
#include "OstrelGUI/OstrelIcon.h"
#include "OstrelGUI/ScannerViewModel.h"
#include "OstrelGUI/Window/ContentView.h"
#include "OstrelGUI/Window/WindowDialogs.h"
#include "OstrelPlatform/Linux/Desktop/LinuxAppearance.h"
#include "OstrelPlatform/Linux/Host/LinuxHostStatistics.h"
#include "OstrelPlatform/Linux/Time/QtMainQueue.h"

#include <QApplication>
#include <QClipboard>
#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QTimer>

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

#include <sys/socket.h>

namespace Ostrel {

namespace {

enum ExitStatus { Done = 0, WrongUsage = 2 };

/// The socket that the resident process named; absent when this program was started by somebody else.
std::optional<int> channelOf(int count, char** values) {
    if (count != 2)
        return std::nullopt;
    int descriptor = -1;
    const auto* end = values[1] + std::strlen(values[1]);
    if (std::from_chars(values[1], end, descriptor).ptr != end)
        return std::nullopt;
    int type = 0;
    socklen_t size = sizeof type;
    const bool isStream = getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_STREAM;
    return isStream ? std::optional(descriptor) : std::nullopt;
}

QIcon icon() {
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128})
        icon.addPixmap(QPixmap::fromImage(OstrelIcon::draw(size)));
    return icon;
}

/// Nothing here has to be put in order at the end: what is to be kept, the resident process keeps.
[[noreturn]] void endProcess() {
    std::_Exit(Done);
}

/// The window and what it shows, once the channel has told of it.
class Window {
public:
    Window(WindowClient& client, MainQueue& mainQueue)
        : client_(client)
        , scans_(mainQueue) {
        client_.onReady = [this] { make(); };
        client_.onShow = [this] { view_->ensureOstrelAppIsActive(); };
        client_.onOpen = [this](const auto& paths) {
            view_->ensureOstrelAppIsActive();
            view_->openSelection(paths);
        };
        client_.onScan = [this](const auto& paths) { view_->listSelection(paths); };
        client_.onEnd = endProcess;
    }

private:
    void make() {
        // The override is set where the widgets are, by the setting that the channel carries there.
        view_ = std::make_unique<ContentView>(ContentView::Dependencies{
            client_.library(), scans_, client_.defaults(), &appearance_, [](const auto&) {}, nullptr});
        view_->onVisibilityChange = [this](bool isVisible) { visibilityDidChange(isVisible); };
    }

    void visibilityDidChange(bool isVisible) {
        client_.setVisible(isVisible);
        // What is made anew in a moment need not take memory until then. Scans would be lost, and what was copied.
        if (!isVisible && scans_.items().empty() && !scans_.isExpanding()
            && !QGuiApplication::clipboard()->ownsClipboard())
            QTimer::singleShot(0, qApp, endProcess);
    }

    WindowClient& client_;
    LinuxAppearance appearance_;
    ScannerViewModel scans_;
    std::unique_ptr<ContentView> view_;
};

int run(int count, char** values) {
    const auto descriptor = channelOf(count, values);
    if (!descriptor) {
        printMessage("ostrel-window is a part of ostrel-gui, which starts it");
        return WrongUsage;
    }
    QApplication application(count, values);
    QApplication::setQuitOnLastWindowClosed(false);
    // Also the window's class, by which the desktop finds the application's name and icon.
    QApplication::setApplicationName("dev.ostrel.gui");
    QApplication::setApplicationDisplayName("Ostrel");
    QApplication::setDesktopFileName("dev.ostrel.gui");
    QApplication::setWindowIcon(icon());
    LinuxHostStatistics statistics;
    QtMainQueue mainQueue(statistics);
    WindowClient client(FileDescriptor(*descriptor), mainQueue);
    const Window window(client, mainQueue);
    QApplication::exec();
    endProcess();
}

} // namespace

} // namespace Ostrel

int main(int count, char** values) {
    return Ostrel::run(count, values);
}
