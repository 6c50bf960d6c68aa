#pragma once

#include "OstrelCore/Documents/SkinModel.h"
#include "OstrelEngine/Geometry.h"
#include "OstrelEngine/Host/WidgetPanel.h"
#include "OstrelEngine/Runtime/SkinHost.h"
#include "OstrelEngine/Runtime/WidgetRuntimeState.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

class DesktopPanels;
class FullWidgetHost;
class FullWidgets;
class Skin;
struct Platform;

/// The life of one widget: its skin's runtime, the panel it shows in and what goes on between the two. May be started
/// again after a stop. Main thread.
class WidgetController final : private SkinHost, private WidgetPanelClient {
public:
    /// Where a widget opens that nobody has placed.
    static constexpr Point DefaultOrigin{100, 100};

    /// All outlive the controller. Without `fullWidgets` every skin runs in the base dialect.
    WidgetController(
        SkinConfig config, const Platform& platform, DesktopPanels& desktop, FullWidgets* fullWidgets = nullptr);
    ~WidgetController() override;
    WidgetController(const WidgetController&) = delete;
    WidgetController& operator=(const WidgetController&) = delete;

    const SkinConfig& config() const { return config_; }
    bool isRunning() const { return skin_ != nullptr; }
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
    std::function<bool()> isScrollReversed;

    // What the skin asks for beyond itself; always from the main queue.
    /// Load all skins anew; without it, this one.
    std::function<void()> onRefreshAppRequest;
    std::function<void(const std::string& path, bool toggle)> onActivateConfigRequest;
    std::function<void(const std::string& path)> onDeactivateConfigRequest;

private:
    struct Window;
    enum class NotifyManager { No, Yes };

    void stop(NotifyManager notify);
    std::shared_ptr<Skin> makeSkinOfItsDialect();
    /// Where the skin itself or `chooseOrigin` says.
    void placeBySize(const Skin& skin);

    // SkinHost. A skin asks in the middle of its own work, and most of what it asks for is its end: that is done later,
    // from the main queue.
    void skinDidPublish(const std::vector<Drawable>& drawables) override;
    void deactivate() override;
    void deactivateConfig(const std::string& path) override;
    void activateConfig(const std::string& path, bool toggle) override;
    void refresh() override;
    void refreshApp() override;
    void promptInput(const std::optional<InputTextPresentation>& presentation) override;
    void stateDidChange(const WidgetRuntimeState& state) override;
    // WidgetPanelClient
    void panelDidMove(Point origin) override;
    void contextActionChosen(WidgetContextAction action) override;
    std::vector<PanelMenuItem> ownMenuItems() override;
    bool isCommandScrollReversed() const override;

    /// Runs the work from the main queue, unless the controller is gone by then.
    void post(std::function<void()> work);
    void reloadIfRunning();

    SkinConfig config_;
    const Platform& platform_;
    DesktopPanels& desktop_;
    FullWidgets* fullWidgets_;
    /// Null for a skin of the base dialect. It outlives the skin.
    std::unique_ptr<FullWidgetHost> fullHost_;
    /// What the counter of a skin of the full dialect stood at when it was loaded again.
    std::int64_t keptCycles_ = 0;
    /// From the first publication on, which comes before the start is over.
    std::unique_ptr<Window> window_;
    /// Null until it has started: a skin whose first tick asks for a stop or a refresh is not running yet.
    std::shared_ptr<Skin> skin_;
    /// Expires with the controller.
    std::shared_ptr<void> life_ = std::make_shared<int>();
};

} // namespace Ostrel
