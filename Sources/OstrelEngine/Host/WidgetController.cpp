#include "OstrelEngine/Host/WidgetController.h"

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelCore/Files/Paths.h"
#include "OstrelDialect/PackReader.h"
#include "OstrelEngine/Full/FullSkin.h"
#include "OstrelEngine/Host/BackgroundOptions.h"
#include "OstrelEngine/Host/FullWidgets.h"
#include "OstrelEngine/Host/PanelPlacement.h"
#include "OstrelEngine/Host/PreviewPicture.h"
#include "OstrelEngine/Host/WidgetCanvasView.h"
#include "OstrelEngine/Host/WidgetPanel.h"
#include "OstrelEngine/Runtime/Skin.h"
#include "OstrelEngine/Runtime/SkinAtWork.h"
#include "OstrelEngine/Runtime/SkinFactory.h"
#include "OstrelPlatform/MainQueue.h"
#include "OstrelPlatform/Platform.h"

#include <utility>
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
    Window(std::shared_ptr<Skin> shown, Point origin, DesktopPanels& desktop, WidgetPanelClient& client)
        : skin(std::move(shown))
        , view(backgroundOf(skin->config()))
        , panel(skin->widgetSize(), origin, view, desktop, client) {
        panel.setTitle(titleOf(skin->config()));
        view.input().connect(skin->makePointerRules(view.canvas().drawables()), skin);
    }

    void show(const std::vector<Drawable>& drawables) {
        view.setDrawables(drawables);
        if (PanelPlacement::shouldResizeWindow(panel.widgetSize(), skin->widgetSize()))
            panel.setWidgetSize(skin->widgetSize());
        view.display();
    }

    std::shared_ptr<Skin> skin;
    WidgetCanvasView view;
    WidgetPanel panel;
};

WidgetController::WidgetController(
    SkinConfig config, const Platform& platform, DesktopPanels& desktop, FullWidgets* fullWidgets)
    : config_(std::move(config))
    , platform_(platform)
    , desktop_(desktop)
    , fullWidgets_(fullWidgets) { }

WidgetController::~WidgetController() {
    stop(NotifyManager::No);
}

std::optional<Point> WidgetController::windowOrigin() const {
    return skin_ ? std::optional(window_->panel.origin()) : std::nullopt;
}

std::optional<Rect> WidgetController::windowFrame() const {
    if (!skin_)
        return std::nullopt;
    const Point origin = window_->panel.origin();
    const QSize size = window_->panel.size();
    return Rect{origin.x, origin.y, static_cast<double>(size.width()), static_cast<double>(size.height())};
}

std::optional<WidgetRuntimeState> WidgetController::snapshotRuntimeState() const {
    return skin_ ? std::optional(skin_->snapshotState()) : std::nullopt;
}

bool WidgetController::isFrozen() const {
    return skin_ && !window_->panel.isMovableByBackground();
}

std::optional<std::string> WidgetController::snapshotPreviewData(double maxDimension) const {
    if (!skin_ || !window_->view.picture())
        return std::nullopt;
    return previewPNG(*window_->view.picture(), window_->view.canvas().size(), maxDimension);
}

void WidgetController::start(std::optional<Point> origin, const std::optional<WidgetRuntimeState>& state) {
    if (skin_)
        return;
    const SkinAtWork work(config_.filePath.c_str());
    const auto skin = makeSkinOfItsDialect();
    if (state)
        skin->applyState(*state);
    // Such a skin knows its size only when it has been updated.
    const bool isPlacedLater = !origin && fullHost_;
    if (isPlacedLater)
        origin = DefaultOrigin;
    if (!origin)
        origin = chooseOrigin ? chooseOrigin(skin->widgetSize()) : DefaultOrigin;
    WidgetPanelClient& client = *this;
    window_ = std::make_unique<Window>(skin, *origin, desktop_, client);
    window_->panel.setSkinPath(config_.filePath);
    window_->panel.setAppearance(platform_.appearance);
    if (fullHost_)
        fullHost_->setPanel(&window_->panel);
    skin->start();
    if (isPlacedLater)
        placeBySize(*skin);
    window_->panel.pinToDesktopLayer();
    if (fullHost_)
        fullHost_->setPanel(&window_->panel);
    skin_ = skin;
}

void WidgetController::placeBySize(const Skin& skin) {
    auto origin = fullHost_->firstOrigin();
    if (!origin && chooseOrigin)
        origin = chooseOrigin(skin.widgetSize());
    if (origin)
        window_->panel.moveTo(*origin);
}

std::shared_ptr<Skin> WidgetController::makeSkinOfItsDialect() {
    fullHost_.reset();
    if (fullWidgets_ && fullWidgets_->policy().runsFullDialect(config_.filePath)) {
        if (auto pack = readPackSkin(config_.filePath)) {
            SkinHost& host = *this;
            fullHost_ = std::make_unique<FullWidgetHost>(host, *fullWidgets_, platform_, pack->folders);
            return fullHost_->makeSkin(std::move(*pack), std::exchange(keptCycles_, 0));
        }
    }
    return makeSkin(config_, platform_, *this);
}

void WidgetController::skinDidPublish(const std::vector<Drawable>& drawables) {
    if (window_)
        window_->show(drawables);
}

void WidgetController::deactivate() {
    post([this] { stop(); });
}

void WidgetController::deactivateConfig(const std::string& path) {
    post([this, path] {
        if (onDeactivateConfigRequest)
            onDeactivateConfigRequest(path);
    });
}

void WidgetController::activateConfig(const std::string& path, bool toggle) {
    post([this, path, toggle] {
        if (onActivateConfigRequest)
            onActivateConfigRequest(path, toggle);
    });
}

void WidgetController::refresh() {
    post([this] { reloadIfRunning(); });
}

void WidgetController::refreshApp() {
    post([this] {
        if (onRefreshAppRequest)
            onRefreshAppRequest();
        else
            reloadIfRunning();
    });
}

void WidgetController::promptInput(const std::optional<InputTextPresentation>& presentation) {
    if (window_)
        window_->view.input().promptInput(presentation);
}

void WidgetController::stateDidChange(const WidgetRuntimeState& state) {
    if (onStateDidChange)
        onStateDidChange(state);
}

void WidgetController::panelDidMove(Point origin) {
    if (fullHost_)
        fullHost_->placeDidChange();
    if (skin_ && onWindowMoved)
        onWindowMoved(origin);
}

void WidgetController::contextActionChosen(WidgetContextAction action) {
    // A stop takes the menu away with its panel.
    post([this, action] {
        if (action == WidgetContextAction::toggleFreeze)
            toggleFreeze();
        else
            stop();
    });
}

std::vector<PanelMenuItem> WidgetController::ownMenuItems() {
    std::vector<PanelMenuItem> items;
    if (!fullHost_)
        return items;
    for (const auto& item : fullHost_->menuItems()) {
        // The action may end the skin and with it the menu that is still at work.
        items.push_back({item.title, [this, action = item.action] {
                             post([this, action] {
                                 if (fullHost_)
                                     fullHost_->runMenuAction(action);
                             });
                         }});
    }
    return items;
}

bool WidgetController::isCommandScrollReversed() const {
    return isScrollReversed && isScrollReversed();
}

void WidgetController::post(std::function<void()> work) {
    platform_.mainQueue.post([life = std::weak_ptr(life_), work = std::move(work)] {
        if (!life.expired())
            work();
    });
}

void WidgetController::stop() {
    stop(NotifyManager::Yes);
}

void WidgetController::stop(NotifyManager notify) {
    const SkinAtWork work(config_.filePath.c_str());
    if (skin_)
        skin_->stop();
    const auto skin = std::exchange(skin_, nullptr);
    if (fullHost_)
        fullHost_->skinDidStop();
    window_.reset();
    if (notify == NotifyManager::Yes && onStop)
        onStop(*this);
}

void WidgetController::reload() {
    const auto path = config_.filePath;
    const SkinAtWork work(path.c_str());
    const auto origin = windowOrigin();
    if (fullHost_)
        keptCycles_ = fullHost_->cycles();
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
    if (skin_)
        window_->panel.setMovableByBackground(isFrozen());
}

} // namespace Ostrel
