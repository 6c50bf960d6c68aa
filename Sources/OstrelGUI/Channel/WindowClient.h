#pragma once

#include "OstrelGUI/Channel/RemoteUserDefaults.h"
#include "OstrelGUI/Channel/RemoteWidgetLibrary.h"
#include "OstrelGUI/Channel/WindowChannel.h"

#include <functional>
#include <string>
#include <vector>

namespace Ostrel {

/// The window process's end of the channel. Main thread.
class WindowClient {
public:
    /// A connected stream socket; the queue outlives the client.
    WindowClient(FileDescriptor socket, MainQueue& mainQueue);

    WidgetLibrary& library() { return library_; }
    UserDefaults& defaults() { return defaults_; }
    /// Tells the resident process whether the user sees a window.
    void setVisible(bool isVisible);

    /// When settings and library are there, once, before any wish.
    std::function<void()> onReady;
    /// Show the window, or bring it forward.
    std::function<void()> onShow;
    /// The same, and take these paths as the user's choice.
    std::function<void(const std::vector<std::string>& paths)> onOpen;
    /// List scans of these paths.
    std::function<void(const std::vector<std::string>& paths)> onScan;
    /// The resident process ends, or is gone.
    std::function<void()> onEnd;

private:
    void handle(const nlohmann::json& message, std::string&& blob);
    void handleWish(const nlohmann::json& message);

    WindowChannel channel_;
    RemoteWidgetLibrary library_;
    RemoteUserDefaults defaults_;
    bool isReady_ = false;
};

} // namespace Ostrel
