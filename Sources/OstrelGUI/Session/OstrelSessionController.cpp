#include "OstrelGUI/Session/OstrelSessionController.h"

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelEngine/Host/WidgetController.h"
#include "OstrelEngine/Host/WidgetManager.h"
#include "OstrelEngine/Runtime/SkinAtWork.h"
#include "OstrelGUI/Session/PackRemoval.h"
#include "OstrelGUI/SessionPaths.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <unordered_set>

namespace Ostrel {

namespace {

constexpr double LargestPreviewDimension = 420;
/// A skin may fill its variables without end; what is beyond this is not remembered.
constexpr std::size_t MaxRuntimeSize = 1U << 20;

bool fileExists(const std::string& path) {
    std::error_code failed;
    const auto status = std::filesystem::status(path, failed);
    return std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

std::optional<SkinConfig> load(const std::string& path) {
    DiskFileProvider files;
    DiagnosticCollector diagnostics;
    return SkinLoader(files, diagnostics).load(path);
}

bool isWithinBounds(const WidgetRuntimeState& runtime) {
    std::size_t size = 0;
    for (const auto& [name, value] : runtime.variables)
        size += name.size() + value.size();
    return size <= MaxRuntimeSize;
}

} // namespace

OstrelSessionController::OstrelSessionController(
    WidgetManager& widgetManager, UserDefaults& defaults, const Platform& platform)
    : widgetManager_(widgetManager)
    , store_(defaults)
    , state_(store_.load())
    , previews_(platform) {
    widgetManager_.onWidgetLaunched = [this](const auto& controller) { handleLaunch(controller); };
    widgetManager_.onWidgetStopped = [this](const std::string& path) { handleStop(path); };
    libraryItems_.update(state_);
}

OstrelSessionController::~OstrelSessionController() {
    widgetManager_.onWidgetLaunched = nullptr;
    widgetManager_.onWidgetStopped = nullptr;
}

void OstrelSessionController::saveNow() {
    store_.save(state_);
    const auto isRunning = [this](const std::string& path) { return widgetManager_.isRunning(path); };
    if (libraryItems_.update(state_, isRunning, failures_) && onLibraryItemsChange)
        onLibraryItemsChange();
}

void OstrelSessionController::restoreIfNeeded() {
    if (didRestore_)
        return;
    didRestore_ = true;
    const auto before = state_;
    OstrelSessionState remaining;
    SkinPacks packs;
    for (const auto& widget : before.widgets) {
        if (!fileExists(widget.path))
            continue;
        remaining.widgets.push_back(widget);
        if (widget.isRendered)
            renderWidget(widget.path, std::nullopt, packs);
    }
    if (remaining.widgets.size() == before.widgets.size())
        return;
    // Without what the launches have added; each widget's next change tells it again.
    state_ = std::move(remaining);
    saveNow();
}

void OstrelSessionController::setFailed(const std::string& path, const std::string& message) {
    const auto position = state_.index(path);
    if (!position)
        return;
    failures_[path] = message;
    state_.widgets[*position].isRendered = false;
    saveNow();
}

void OstrelSessionController::setAllFailed(const std::string& message) {
    for (const auto& widget : OstrelSessionState(state_).widgets)
        if (widget.isRendered)
            setFailed(widget.path, message);
}

void OstrelSessionController::registerDiscovered(std::span<const std::string> paths) {
    SkinPacks packs;
    registerDiscovered(paths, packs);
}

void OstrelSessionController::registerDiscovered(std::span<const std::string> paths, SkinPacks& packs) {
    std::unordered_set<std::string_view> known;
    for (const auto& widget : state_.widgets)
        known.insert(widget.path);
    std::vector<OstrelWidgetState> discovered;
    for (const auto& path : packs.withRelated(paths))
        if (!known.contains(path) && fileExists(path))
            discovered.push_back({.path = path});
    if (discovered.empty())
        return;
    state_.widgets.insert(state_.widgets.end(), discovered.begin(), discovered.end());
    saveNow();
}

void OstrelSessionController::renderWidget(const std::string& path, std::optional<Point> origin) {
    SkinPacks packs;
    renderWidget(path, origin, packs);
}

void OstrelSessionController::renderWidget(const std::string& text, std::optional<Point> origin, SkinPacks& packs) {
    const auto path = normalizeSkinPath(text);
    if (!fileExists(path))
        return;
    registerDiscovered(std::span(&path, 1), packs);
    const SkinAtWork work(path.c_str());
    auto config = load(path);
    if (!config)
        return;
    const auto widget = stateOf(path, false);
    widgetManager_.launch(std::move(*config), origin ? origin : widget.origin,
        widget.runtime ? std::optional(*widget.runtime) : std::nullopt);
}

void OstrelSessionController::unrenderWidget(const std::string& path) {
    widgetManager_.stop(path);
}

std::string OstrelSessionController::packageRootPath(const std::string& path) {
    return Ostrel::packageRootPath(path);
}

std::optional<std::string> OstrelSessionController::deletePackage(std::span<const std::string> rootPaths) {
    auto roots = standardizedPackRoots(rootPaths);
    if (!roots.failure.empty())
        return roots.failure;
    std::vector<OstrelWidgetState> doomed;
    std::ranges::copy_if(state_.widgets, std::back_inserter(doomed),
        [&](const auto& widget) { return roots.paths.contains(Ostrel::packageRootPath(widget.path)); });
    for (const auto& widget : doomed)
        if (widget.isRendered)
            widgetManager_.stop(widget.path);
    for (const auto& root : roots.paths)
        if (auto failure = removePack(root))
            return failure;
    if (doomed.empty())
        return std::nullopt;
    for (const auto& widget : doomed)
        state_.remove(widget.path);
    saveNow();
    return std::nullopt;
}

OstrelWidgetState OstrelSessionController::stateOf(const std::string& path, bool isRenderedWhenNew) const {
    if (const auto position = state_.index(path))
        return state_.widgets[*position];
    return {.path = path, .isRendered = isRenderedWhenNew};
}

void OstrelSessionController::handleLaunch(const std::shared_ptr<WidgetController>& controller) {
    const auto path = controller->config().filePath;
    const auto whileAlive = [life = std::weak_ptr(life_)](auto work) {
        return [life, work](const auto& argument) {
            if (!life.expired())
                work(argument);
        };
    };
    controller->onStateDidChange = whileAlive([this, path, weak = std::weak_ptr(controller)](const auto& runtime) {
        updateRuntime(path, runtime);
        if (const auto changed = weak.lock())
            captureSnapshotLater(path, changed);
    });
    controller->onWindowMoved = whileAlive([this, path](Point origin) { updateOrigin(path, origin); });

    failures_.erase(path);
    auto widget = stateOf(path, true);
    widget.isRendered = true;
    if (const auto origin = controller->windowOrigin())
        widget.origin = origin;
    if (auto runtime = controller->snapshotRuntimeState(); runtime && isWithinBounds(*runtime))
        widget.runtime = std::make_shared<const WidgetRuntimeState>(std::move(*runtime));
    state_.upsert(std::move(widget));
    saveNow();
    captureSnapshotLater(path, controller);
}

void OstrelSessionController::handleStop(const std::string& path) {
    if (isTerminating_)
        return;
    auto widget = stateOf(path, false);
    widget.isRendered = false;
    state_.upsert(std::move(widget));
    saveNow();
}

void OstrelSessionController::updateRuntime(const std::string& path, const WidgetRuntimeState& runtime) {
    if (!isWithinBounds(runtime))
        return;
    auto widget = stateOf(path, true);
    widget.runtime = std::make_shared<const WidgetRuntimeState>(runtime);
    state_.upsert(std::move(widget));
    saveNow();
}

void OstrelSessionController::updateOrigin(const std::string& path, Point origin) {
    auto widget = stateOf(path, true);
    widget.origin = origin;
    state_.upsert(std::move(widget));
    saveNow();
}

void OstrelSessionController::captureSnapshotLater(
    const std::string& path, const std::shared_ptr<WidgetController>& controller) {
    previews_.request(path, [this, path, weak = std::weak_ptr(controller)] {
        const auto captured = weak.lock();
        auto picture = captured ? captured->snapshotPreviewData(LargestPreviewDimension) : std::nullopt;
        if (picture)
            updateSnapshot(path, std::move(*picture));
    });
}

void OstrelSessionController::updateSnapshot(const std::string& path, std::string snapshotData) {
    auto widget = stateOf(path, true);
    const auto known = widget.snapshotData ? widget.snapshotData->bytes() : nullptr;
    if (known && *known == snapshotData)
        return;
    widget.snapshotData = std::make_shared<const SnapshotPicture>(std::move(snapshotData));
    state_.upsert(std::move(widget));
    saveNow();
}

} // namespace Ostrel
