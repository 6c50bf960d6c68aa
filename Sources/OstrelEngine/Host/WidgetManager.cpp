#include "OstrelEngine/Host/WidgetManager.h"

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelCore/Files/Paths.h"
#include "OstrelEngine/Host/WidgetController.h"
#include "OstrelEngine/Runtime/SkinAtWork.h"
#include "OstrelPlatform/MainQueue.h"
#include "OstrelPlatform/Platform.h"

namespace Ostrel {

namespace {

/// The key of a config that a skin names, maybe in another case than the file has.
std::string keyOfConfig(const std::string& path) {
    return existingPath(standardizedPath(path));
}

} // namespace

WidgetManager::WidgetManager(const Platform& platform, DesktopPanels& desktop, FullWidgets* fullWidgets)
    : platform_(platform)
    , desktop_(desktop)
    , fullWidgets_(fullWidgets) { }

WidgetManager::~WidgetManager() = default;

void WidgetManager::launch(
    SkinConfig config, std::optional<Point> origin, const std::optional<WidgetRuntimeState>& initialState) {
    const auto key = standardizedPath(config.filePath);
    config.filePath = key;
    stop(key);
    const auto controller = std::make_shared<WidgetController>(std::move(config), platform_, desktop_, fullWidgets_);
    connect(controller);
    controller->start(origin, initialState);
    activeWidgets_[key] = controller;
    if (onWidgetLaunched)
        onWidgetLaunched(controller);
}

void WidgetManager::connect(const std::shared_ptr<WidgetController>& controller) {
    // What a controller calls may come when the manager is gone.
    const auto whileAlive = [life = std::weak_ptr(life_)](auto work) {
        return [life, work](auto&&... arguments) {
            if (!life.expired())
                work(std::forward<decltype(arguments)>(arguments)...);
        };
    };
    controller->onRefreshAppRequest = whileAlive([this] { refreshAll(); });
    controller->onActivateConfigRequest
        = whileAlive([this](const std::string& path, bool isToggle) { handleActivateConfig(path, isToggle); });
    controller->onDeactivateConfigRequest = whileAlive([this](const std::string& path) { stop(keyOfConfig(path)); });
    controller->onStop = whileAlive([this](WidgetController& stopped) { handleControllerStopped(stopped); });
    controller->chooseOrigin = [this, life = std::weak_ptr(life_)](Size size) {
        return !life.expired() && chooseOrigin ? chooseOrigin(size) : WidgetController::DefaultOrigin;
    };
    controller->isScrollReversed = [this, life = std::weak_ptr(life_)] {
        return !life.expired() && isCommandScrollReversed && isCommandScrollReversed();
    };
}

void WidgetManager::stop(const std::string& path) {
    if (const auto found = activeWidgets_.find(standardizedPath(path)); found != activeWidgets_.end()) {
        const auto controller = found->second;
        controller->stop();
    }
}

void WidgetManager::stopAll() {
    // Each stop takes its widget out of the table.
    for (const auto& [key, controller] : Widgets(activeWidgets_))
        controller->stop();
}

void WidgetManager::refreshAll() {
    for (const auto& [key, controller] : Widgets(activeWidgets_))
        controller->reload();
}

bool WidgetManager::isRunning(const std::string& path) const {
    const auto found = activeWidgets_.find(standardizedPath(path));
    return found != activeWidgets_.end() && found->second->isRunning();
}

void WidgetManager::handleActivateConfig(const std::string& path, bool isToggle) {
    const auto key = keyOfConfig(path);
    if (isToggle && isRunning(key))
        return stop(key);
    DiskFileProvider files;
    DiagnosticCollector diagnostics;
    const SkinAtWork work(key.c_str());
    if (auto config = SkinLoader(files, diagnostics).load(key))
        launch(std::move(*config));
}

void WidgetManager::handleControllerStopped(const WidgetController& controller) {
    const auto key = controller.config().filePath;
    const auto found = activeWidgets_.find(key);
    // A late stop of one that has been replaced.
    if (found == activeWidgets_.end() || found->second.get() != &controller)
        return;
    // It is in the middle of its own stop and needs itself for a while.
    platform_.mainQueue.post([stopped = std::move(found->second)] {});
    activeWidgets_.erase(found);
    if (onWidgetStopped)
        onWidgetStopped(key);
}

} // namespace Ostrel
