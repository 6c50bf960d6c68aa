#pragma once

#include "OstrelCore/Documents/SkinModel.h"
#include "OstrelEngine/Geometry.h"
#include "OstrelEngine/Runtime/WidgetRuntimeState.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Ostrel {

class DesktopPanels;
class SkinRuntime;
struct Platform;

/// The life of one widget: its skin's runtime, the panel it shows in and what goes on between the two. May be started
/// again after a stop. Main thread.
class WidgetController {
public:
    /// Where a widget opens that nobody has placed.
    static constexpr Point DefaultOrigin{100, 100};

    /// The platform and the desktop outlive the controller.
    WidgetController(SkinConfig config, const Platform& platform, DesktopPanels& desktop);
    ~WidgetController();
    WidgetController(const WidgetController&) = delete;
    WidgetController& operator=(const WidgetController&) = delete;

    const SkinConfig& config() const { return config_; }
    bool isRunning() const { return runtime_ != nullptr; }
    /// Bottom left corner, y upward, relative to the primary screen; absent while stopped.
    std::optional<Point> windowOrigin() const;
    /// The same with the window's size, in points.
    std::optional<Rect> windowFrame() const;
    /// Absent while stopped.
    std::optional<WidgetRuntimeState> snapshotRuntimeState() const;
    bool isFrozen() const;
    /// A PNG of what the widget shows now, no larger than `maxDimension` pixels in either dimension. Absent while
    /// stopped, and for a widget of a point or less in either dimension.
    std::optional<std::string> snapshotPreviewData(double maxDimension = 420) const;

    /// Does nothing to a running widget.
    void start(
        std::optional<Point> origin = std::nullopt, const std::optional<WidgetRuntimeState>& state = std::nullopt);
    void stop();
    /// Reads the skin anew and starts it at the same place, without what it changed at run time. A skin that no longer
    /// loads goes on as it was read last. `onStop` is not called.
    void reload();
    /// A frozen panel is not moved by its background.
    void toggleFreeze();

    /// The origin of a widget of this size for which `start` names none; `DefaultOrigin` without it.
    std::function<Point(Size)> chooseOrigin;
    /// Not called by a reload.
    std::function<void(WidgetController&)> onStop;
    /// With the panel's new origin.
    std::function<void(Point)> onWindowMoved;
    std::function<void(const WidgetRuntimeState&)> onStateDidChange;

    /// Whether command-scrolling up means down; never, when it is empty.
    std::function<bool()> isCommandScrollReversed;

    // What the skin asks for beyond itself; always from the main queue.
    /// Load all skins anew; without it, this one.
    std::function<void()> onRefreshAppRequest;
    std::function<void(const std::string& path, bool toggle)> onActivateConfigRequest;
    std::function<void(const std::string& path)> onDeactivateConfigRequest;

private:
    struct Window;
    enum class NotifyManager { No, Yes };

    void stop(NotifyManager notify);
    void connectRequests(SkinRuntime& runtime);
    void connectInput(const std::shared_ptr<SkinRuntime>& runtime, const std::shared_ptr<Window>& window);
    /// Runs the work from the main queue, unless the controller is gone by then.
    void post(std::function<void()> work);
    void refreshApp();
    void reloadIfRunning();

    SkinConfig config_;
    const Platform& platform_;
    DesktopPanels& desktop_;
    std::shared_ptr<SkinRuntime> runtime_;
    /// Shared with the runtime's callbacks, which hold it weakly: a late one finds nothing.
    std::shared_ptr<Window> window_;
    /// Expires with the controller.
    std::shared_ptr<void> life_ = std::make_shared<int>();
};

} // namespace Ostrel
