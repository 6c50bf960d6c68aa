#include "OstrelEngine/Host/WidgetController.h"

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelCore/Files/Paths.h"
#include "OstrelEngine/Host/BackgroundOptions.h"
#include "OstrelEngine/Host/CanvasWiring.h"
#include "OstrelEngine/Host/PanelPlacement.h"
#include "OstrelEngine/Host/PreviewPicture.h"
#include "OstrelEngine/Host/WidgetCanvasView.h"
#include "OstrelEngine/Host/WidgetPanel.h"
#include "OstrelEngine/Runtime/SkinAtWork.h"
#include "OstrelEngine/Runtime/SkinRuntime.h"
#include "OstrelPlatform/MainQueue.h"
#include "OstrelPlatform/Platform.h"

#include <vector>

namespace Ostrel {

namespace {

/// What window lists and automation know the panel by.
QString titleOf(const SkinConfig& config) {
    const auto& name = config.metadata.name;
    return QString::fromStdString(name && !name->empty() ? *name : lastPathComponent(config.filePath));
}

} // namespace

struct WidgetController::Window {
    Window(Size size, Point origin, CanvasBackground background, DesktopPanels& desktop)
        : view(std::move(background))
        , panel(size, origin, view, desktop) { }

    void show(const std::vector<Drawable>& drawables, Size widgetSize) {
        view.setDrawables(drawables);
        if (PanelPlacement::shouldResizeWindow(panel.widgetSize(), widgetSize))
            panel.setWidgetSize(widgetSize);
        view.display();
    }

    WidgetCanvasView view;
    WidgetPanel panel;
};

WidgetController::WidgetController(SkinConfig config, const Platform& platform, DesktopPanels& desktop)
    : config_(std::move(config))
    , platform_(platform)
    , desktop_(desktop) { }

WidgetController::~WidgetController() {
    stop(NotifyManager::No);
}

std::optional<Point> WidgetController::windowOrigin() const {
    return window_ ? std::optional(window_->panel.origin()) : std::nullopt;
}

std::optional<Rect> WidgetController::windowFrame() const {
    if (!window_)
        return std::nullopt;
    const Point origin = window_->panel.origin();
    const QSize size = window_->panel.size();
    return Rect{origin.x, origin.y, static_cast<double>(size.width()), static_cast<double>(size.height())};
}

std::optional<WidgetRuntimeState> WidgetController::snapshotRuntimeState() const {
    return runtime_ ? std::optional(runtime_->snapshotState()) : std::nullopt;
}

bool WidgetController::isFrozen() const {
    return window_ && !window_->panel.isMovableByBackground();
}

std::optional<std::string> WidgetController::snapshotPreviewData(double maxDimension) const {
    if (!window_ || !window_->view.picture())
        return std::nullopt;
    return previewPNG(*window_->view.picture(), window_->view.canvas().size(), maxDimension);
}

void WidgetController::start(std::optional<Point> origin, const std::optional<WidgetRuntimeState>& state) {
    if (runtime_)
        return;
    const SkinAtWork work(config_.filePath.c_str());
    const auto runtime = SkinRuntime::create(config_, platform_);
    if (state)
        runtime->applyState(*state);
    const Size size = runtime->widgetSize();
    if (!origin)
        origin = chooseOrigin ? chooseOrigin(size) : DefaultOrigin;
    const auto window = std::make_shared<Window>(size, *origin, backgroundOf(config_), desktop_);
    runtime->onUpdate = [weakWindow = std::weak_ptr(window), owner = runtime.get()](const auto& drawables) {
        if (const auto shown = weakWindow.lock())
            shown->show(drawables, owner->widgetSize());
    };
    connectRequests(*runtime);
    connectInput(runtime, window);
    window->panel.setTitle(titleOf(config_));
    window->panel.setSkinPath(config_.filePath);
    window->panel.setAppearance(platform_.appearance);

    runtime->start();
    window->panel.pinToDesktopLayer();
    // Only now: a skin whose first tick asks for a stop or a refresh is not running yet.
    runtime_ = runtime;
    window_ = window;
    window_->panel.onMoved = [this](Point moved) {
        if (onWindowMoved)
            onWindowMoved(moved);
    };
}

/// A skin asks in the middle of its own work, and most of what it asks for is its end.
void WidgetController::connectRequests(SkinRuntime& runtime) {
    runtime.onDeactivateRequest = [this] { post([this] { stop(); }); };
    runtime.onRefreshRequest = [this] { post([this] { reloadIfRunning(); }); };
    runtime.onRefreshAppRequest = [this] { post([this] { refreshApp(); }); };
    runtime.onActivateConfigRequest = [this](const std::string& path, bool toggle) {
        post([this, path, toggle] {
            if (onActivateConfigRequest)
                onActivateConfigRequest(path, toggle);
        });
    };
    runtime.onDeactivateConfigRequest = [this](const std::string& path) {
        post([this, path] {
            if (onDeactivateConfigRequest)
                onDeactivateConfigRequest(path);
        });
    };
    runtime.onStateDidChange = [this](const WidgetRuntimeState& state) {
        if (onStateDidChange)
            onStateDidChange(state);
    };
}

void WidgetController::connectInput(
    const std::shared_ptr<SkinRuntime>& runtime, const std::shared_ptr<Window>& window) {
    auto& input = window->view.input();
    connectCanvas(input, runtime, platform_.hostStatistics);
    input.isCommandScrollReversed = [this] { return isCommandScrollReversed && isCommandScrollReversed(); };
    runtime->onInputTextPrompt = [weakWindow = std::weak_ptr(window)](const auto& presentation) {
        const auto shown = weakWindow.lock();
        if (shown && presentation)
            shown->view.input().presentInput(*presentation);
        else if (shown)
            shown->view.input().dismissInput();
    };
    // The menu is still at work, and a stop takes it away with its panel.
    window->panel.onContextAction = [this](WidgetContextAction action) {
        post([this, action] {
            if (action == WidgetContextAction::toggleFreeze)
                toggleFreeze();
            else
                stop();
        });
    };
}

void WidgetController::post(std::function<void()> work) {
    platform_.mainQueue.post([life = std::weak_ptr(life_), work = std::move(work)] {
        if (!life.expired())
            work();
    });
}

void WidgetController::refreshApp() {
    if (onRefreshAppRequest)
        onRefreshAppRequest();
    else
        reloadIfRunning();
}

void WidgetController::stop() {
    stop(NotifyManager::Yes);
}

void WidgetController::stop(NotifyManager notify) {
    const SkinAtWork work(config_.filePath.c_str());
    if (runtime_)
        runtime_->stop();
    window_.reset();
    runtime_.reset();
    if (notify == NotifyManager::Yes && onStop)
        onStop(*this);
}

void WidgetController::reload() {
    const auto path = config_.filePath;
    const SkinAtWork work(path.c_str());
    const auto origin = windowOrigin();
    stop(NotifyManager::No);
    DiskFileProvider files;
    DiagnosticCollector diagnostics;
    if (auto config = SkinLoader(files, diagnostics).load(config_.filePath))
        config_ = std::move(*config);
    start(origin);
}

/// What was asked for before a stop must not start the widget again, behind the back of those who were told.
void WidgetController::reloadIfRunning() {
    if (isRunning())
        reload();
}

void WidgetController::toggleFreeze() {
    if (window_)
        window_->panel.setMovableByBackground(isFrozen());
}

} // namespace Ostrel
