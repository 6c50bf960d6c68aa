#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Ostrel {

class DesktopPanels;
class WidgetController;
struct Platform;

/// The running application: the widgets that are open.
class OstrelGUIApp {
public:
    /// Both outlive the application.
    OstrelGUIApp(const Platform& platform, DesktopPanels& desktop);
    ~OstrelGUIApp();

    /// Opens every skin that the paths stand for. What cannot be loaded is told on standard error; false when that was
    /// all of them.
    bool open(const std::vector<std::string>& paths);
    /// Stops every widget, as skins expect it when the program ends.
    void stopAll();

    /// When the last widget has stopped.
    std::function<void()> onLastStop;

private:
    void widgetDidStop();

    const Platform& platform_;
    DesktopPanels& desktop_;
    std::vector<std::unique_ptr<WidgetController>> widgets_;
};

} // namespace Ostrel
