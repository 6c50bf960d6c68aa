#include "OstrelCLI/HeadlessSkin.h"

#include "OstrelCLI/Command.h"
#include "OstrelCLI/SkinInput.h"
#include "OstrelEngine/Host/CanvasWiring.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <utility>

namespace Ostrel {

std::unique_ptr<HeadlessSkin> HeadlessSkin::load(const std::string& path, std::optional<double> wallSeconds) {
    DiagnosticCollector diagnostics;
    auto config = loadSkinToRun(path, diagnostics);
    if (!config)
        return nullptr;
    return std::unique_ptr<HeadlessSkin>(new HeadlessSkin(std::move(*config), wallSeconds));
}

HeadlessSkin::HeadlessSkin(SkinConfig config, std::optional<double> wallSeconds)
    : time_(wallSeconds)
    , audio_(time_)
    , player_(time_) {
    time_.onWake = [this] { hostStatistics_.beginWake(); };
    runtime_ = SkinRuntime::create(std::move(config),
        Platform{.clock = time_,
            .mainQueue = time_,
            .hostStatistics = hostStatistics_,
            .fonts = fonts_,
            .remoteReader = remoteReader_,
            .audioSpectrum = &audio_.spectrum(),
            .workspace = &workspace_,
            .mediaPlayers = &player_.bridges(),
            .pictures = &pictures_,
            .recycleManager = &sparedTrash_});
    runtime_->onUpdate = [this](const auto& drawables) { publish(drawables); };
    runtime_->onInputTextPrompt = [this](const auto& presentation) { prompt(presentation); };
    connectCanvas(input_, runtime_, hostStatistics_);
}

HeadlessSkin::~HeadlessSkin() = default;

void HeadlessSkin::publish(const std::vector<Drawable>& drawables) {
    drawables_ = drawables;
    if (onUpdate)
        onUpdate(drawables_);
}

void HeadlessSkin::prompt(const std::optional<InputTextPresentation>& presentation) {
    if (onInputTextPrompt)
        onInputTextPrompt(presentation);
    if (presentation)
        input_.presentInput(*presentation);
    else
        input_.dismissInput();
}

void HeadlessSkin::start() {
    runtime_->start();
    runPending();
}

void HeadlessSkin::stop() {
    runtime_->stop();
    runPending();
}

void HeadlessSkin::tick() {
    time_.advance(runtime_->updateIntervalSeconds());
    audio_.pass(runtime_->updateIntervalSeconds());
    time_.fireTimers();
    runPending();
}

void HeadlessSkin::tickInRealTime() {
    constexpr double Longest = 1;
    std::this_thread::sleep_for(std::chrono::duration<double>(std::min(runtime_->updateIntervalSeconds(), Longest)));
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
