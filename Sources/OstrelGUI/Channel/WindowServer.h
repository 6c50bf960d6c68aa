#pragma once

#include "OstrelGUI/Channel/LibraryFeed.h"
#include "OstrelGUI/Channel/WindowChannel.h"

#include <functional>
#include <memory>
#include <span>
#include <string>

namespace Ostrel {

class MainQueue;
class UserDefaults;
class WidgetLibrary;

/// The resident process's end of the channel: tells the window of the library and of the settings, and does what it
/// asks. Main thread.
class WindowServer {
public:
    /// All of them outlive the server. It is the library's observer for as long as it lives.
    WindowServer(
        std::unique_ptr<WindowChannel> channel, WidgetLibrary& library, UserDefaults& defaults, MainQueue& mainQueue);
    ~WindowServer();
    WindowServer(const WindowServer&) = delete;
    WindowServer& operator=(const WindowServer&) = delete;

    /// Shows the window, and brings it forward when it is on the screen already.
    void show();
    /// The same, with paths as if the user had chosen them in the window, all at once.
    void open(std::span<const std::string> paths);
    /// Lists scans of these paths, without a word to the user.
    void scan(std::span<const std::string> paths);
    void quit();

    /// Whether the user sees a window.
    bool isWindowVisible() const { return isWindowVisible_; }
    std::function<void()> onVisibilityChange;
    /// After a setting of the user's has been stored.
    std::function<void(const std::string& key)> onSettingChange;
    /// When the window's process is gone. May end the server's life.
    std::function<void()> onEnd;

private:
    void handle(const nlohmann::json& message);
    void change(const nlohmann::json& message);
    void deletePackage(const nlohmann::json& message);
    void sendSettings();
    /// Tells what is new of the library after this turn of the loop.
    void tellLater();
    void tell();

    std::unique_ptr<WindowChannel> channel_;
    WidgetLibrary& library_;
    UserDefaults& defaults_;
    MainQueue& mainQueue_;
    LibraryFeed feed_;
    bool isWindowVisible_ = false;
    bool willTell_ = false;
    /// Expires with the server.
    std::shared_ptr<void> life_ = std::make_shared<int>();
};

} // namespace Ostrel
