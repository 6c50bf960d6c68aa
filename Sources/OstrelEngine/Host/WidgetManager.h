#pragma once

#include "OstrelCore/Documents/SkinModel.h"
#include "OstrelEngine/Geometry.h"
#include "OstrelEngine/Runtime/WidgetRuntimeState.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace Ostrel {

class DesktopPanels;
class FullWidgets;
class WidgetController;
struct Platform;

/// The table of running widgets: at most one for each skin file, by its standardized absolute path. Paths given to it
/// are standardized first. Main thread.
class WidgetManager {
public:
    /// All outlive the manager. Without `fullWidgets` every skin runs in the base dialect.
    WidgetManager(const Platform& platform, DesktopPanels& desktop, FullWidgets* fullWidgets = nullptr);
    ~WidgetManager();
    WidgetManager(const WidgetManager&) = delete;
    WidgetManager& operator=(const WidgetManager&) = delete;

    using Widgets = std::map<std::string, std::shared_ptr<WidgetController>>;
    const Widgets& activeWidgets() const { return activeWidgets_; }

    /// A widget of that file that runs already is stopped first, and `onWidgetStopped` told, before the new one is
    /// made. Without an origin the widget stands where `chooseOrigin` says.
    void launch(SkinConfig config, std::optional<Point> origin = std::nullopt,
        const std::optional<WidgetRuntimeState>& initialState = std::nullopt);
    void stop(const std::string& path);
    void stopAll();
    void refreshAll();
    bool isRunning(const std::string& path) const;

    /// After its start; the controller lives in the table.
    std::function<void(const std::shared_ptr<WidgetController>&)> onWidgetLaunched;
    /// With the key, after it has left the table.
    std::function<void(const std::string& key)> onWidgetStopped;
    /// Given to every controller; see there.
    std::function<Point(Size)> chooseOrigin;
    std::function<bool()> isCommandScrollReversed;

private:
    void connect(const std::shared_ptr<WidgetController>& controller);
    void handleActivateConfig(const std::string& path, bool isToggle);
    void handleControllerStopped(const WidgetController& controller);

    const Platform& platform_;
    DesktopPanels& desktop_;
    FullWidgets* fullWidgets_;
    Widgets activeWidgets_;
    /// Expires with the manager: a controller may be held longer by others.
    std::shared_ptr<void> life_ = std::make_shared<int>();
};

} // namespace Ostrel
