#include "OstrelCLI/HeadlessSkin.h"

#include "OstrelCLI/Command.h"
#include "OstrelCLI/SkinInput.h"
#include "OstrelDialect/PackReader.h"
#include "OstrelEngine/Runtime/SkinFactory.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <utility>

namespace Ostrel {

std::unique_ptr<HeadlessSkin> HeadlessSkin::load(
    const std::string& path, std::optional<double> wallSeconds, const DialectOptions& options) {
    std::unique_ptr<HeadlessSkin> headless(new HeadlessSkin(wallSeconds));
    if (options.isFull) {
        auto skin = readPackSkin(path, std::nullopt, options.root);
        if (!skin) {
            printMessage("cannot load " + path);
            return nullptr;
        }
        headless->run(std::move(*skin), options);
        return headless;
    }
    DiagnosticCollector diagnostics;
    auto config = loadSkinToRun(path, diagnostics);
    if (!config)
        return nullptr;
    headless->run(std::move(*config));
    return headless;
}

HeadlessSkin::HeadlessSkin(std::optional<double> wallSeconds)
    : time_(wallSeconds)
    , audio_(time_)
    , player_(time_) {
    time_.onWake = [this] { hostStatistics_.beginWake(); };
}

Platform HeadlessSkin::platform() {
    return {.clock = time_,
        .mainQueue = time_,
        .hostStatistics = hostStatistics_,
        .fonts = fonts_,
        .remoteReader = remoteReader_,
        .audioSpectrum = &audio_.spectrum(),
        .workspace = &workspace_,
        .mediaPlayers = &player_.bridges(),
        .pictures = &pictures_,
        .recycleManager = &sparedTrash_,
        .scripts = &scripts_,
        .web = &web_,
        .worker = &background_};
}

void HeadlessSkin::run(SkinConfig config) {
    skin_ = makeSkin(std::move(config), platform(), *this);
    input_.connect(skin_->makePointerRules(drawables_), skin_);
}

void HeadlessSkin::run(PackSkin skin, const DialectOptions& options) {
    SkinHost& base = *this;
    fullHost_ = std::make_unique<HeadlessFullHost>(base, options);
    fullSkin_ = FullSkin::create(std::move(skin), platform(), *fullHost_);
    skin_ = fullSkin_;
    input_.connect(skin_->makePointerRules(drawables_), skin_);
}

void HeadlessSkin::setWatcher(HeadlessWatcher* watcher) {
    watcher_ = watcher;
    if (fullHost_)
        fullHost_->setWatcher(watcher);
}

void HeadlessSkin::place(int x, int y) {
    if (!fullSkin_)
        return;
    fullHost_->place(x, y);
    fullSkin_->placeDidChange();
}

HeadlessSkin::~HeadlessSkin() = default;

void HeadlessSkin::skinDidPublish(const std::vector<Drawable>& drawables) {
    drawables_ = drawables;
    if (watcher_)
        watcher_->skinDidPublish(drawables_);
}

void HeadlessSkin::promptInput(const std::optional<InputTextPresentation>& presentation) {
    if (watcher_)
        watcher_->promptInput(presentation);
    input_.promptInput(presentation);
}

void HeadlessSkin::deactivate() {
    if (watcher_)
        watcher_->deactivate();
}

void HeadlessSkin::deactivateConfig(const std::string& path) {
    if (watcher_)
        watcher_->deactivateConfig(path);
}

void HeadlessSkin::activateConfig(const std::string& path, bool toggle) {
    if (watcher_)
        watcher_->activateConfig(path, toggle);
}

void HeadlessSkin::refresh() {
    if (watcher_)
        watcher_->refresh();
}

void HeadlessSkin::refreshApp() {
    if (watcher_)
        watcher_->refreshApp();
}

void HeadlessSkin::start() {
    skin_->start();
    runPending();
}

void HeadlessSkin::stop() {
    skin_->stop();
    runPending();
}

void HeadlessSkin::tick() {
    time_.advance(skin_->updateIntervalSeconds());
    audio_.pass(skin_->updateIntervalSeconds());
    time_.fireTimers();
    runPending();
}

void HeadlessSkin::tickInRealTime() {
    constexpr double Longest = 1;
    std::this_thread::sleep_for(std::chrono::duration<double>(std::min(skin_->updateIntervalSeconds(), Longest)));
    tick();
}

void HeadlessSkin::wait(double seconds) {
    time_.advance(seconds);
    runPending();
}

void HeadlessSkin::act(const std::function<void()>& happening) {
    happening();
    runPending();
}

void HeadlessSkin::runPending() {
    time_.runQueued();
    player_.deliver();
    // Background work that asks for more with each result is cut off.
    constexpr int MaxRounds = 100;
    for (int round = 0; background_.pendingCount() > 0 && round < MaxRounds; ++round) {
        background_.runDue();
        time_.runQueued();
    }
}

void HeadlessSkin::playAudio(const std::string& path) {
    if (audio_.play(path))
        return;
    printMessage("cannot read " + path);
    lacksInput_ = true;
}

void HeadlessSkin::answerPollsFrom(const std::string& path) {
    if (player_.setAnswerFromFile(path))
        return;
    printMessage("cannot read " + path);
    lacksInput_ = true;
}

} // namespace Ostrel
