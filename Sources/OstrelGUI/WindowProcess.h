#pragma once

#include "OstrelCore/Files/FileDescriptor.h"
#include "OstrelGUI/MainWindow.h"

#include <functional>
#include <memory>
#include <string>

class QSocketNotifier;

namespace Ostrel {

class MainQueue;
class UserDefaults;
class WidgetLibrary;
class WindowServer;

/// The main window in a process of its own, which is started when the window is first wanted, may end itself while the
/// user does not see it, and whose crash is no more than a window that closes.
class WindowProcess final : public MainWindow {
public:
    /// The program's file. All others outlive the process.
    WindowProcess(std::string program, WidgetLibrary& library, UserDefaults& defaults, MainQueue& mainQueue);
    /// The window goes with its owner.
    ~WindowProcess() override;

    void show() override;
    void open(std::span<const std::string> paths) override;
    void scan(std::span<const std::string> paths) override;
    bool isVisible() const override { return isVisible_; }

    /// After a setting of the user's has been stored.
    std::function<void(const std::string& key)> onSettingChange;

    /// Beside this program, where a build and a plain folder have it, else where an installation keeps it.
    static std::string installedProgram();

private:
    /// Null when the program cannot be started, which is told on standard error.
    WindowServer* server();
    bool start();
    /// Takes the process's exit status off the system's hands once it has ended.
    void reapAtEnd(int process);
    /// The user wants to see the window.
    void expect();
    void setVisible(bool isVisible);
    void didEnd();

    std::string program_;
    WidgetLibrary& library_;
    UserDefaults& defaults_;
    MainQueue& mainQueue_;
    std::unique_ptr<WindowServer> server_;
    bool isVisible_ = false;
    /// The user wants the window, and its process, which hid it, has not shown it again yet.
    bool isAwaited_ = false;
    /// This process has shown it before.
    bool wasSeen_ = false;
    /// Expires with the owner.
    std::shared_ptr<void> life_ = std::make_shared<int>();
};

} // namespace Ostrel
