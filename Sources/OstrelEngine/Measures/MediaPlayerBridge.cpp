#include "OstrelEngine/Measures/MediaPlayerBridge.h"

#include "OstrelEngine/Measures/PlayerCommandText.h"
#include "OstrelPlatform/Clock.h"
#include "OstrelPlatform/PlayerTransport.h"
#include "OstrelPlatform/SerialQueue.h"

#include <utility>

namespace Ostrel {

namespace {

/// What a sum of intervals loses on the way; a whole interval counts as passed.
constexpr double ClockRounding = 1e-6;

} // namespace

MediaPlayerBridge::MediaPlayerBridge(MacOSPlayer player, Environment environment)
    : player_(player)
    , environment_(std::move(environment)) { }

MediaPlayerBridge::~MediaPlayerBridge() {
    environment_.pollQueue.reset();
}

std::string MediaPlayerBridge::effectiveAppName() const {
    return target().name;
}

PlayerTarget MediaPlayerBridge::target() const {
    if (auto chosen = environment_.appNameOverride())
        return {std::move(*chosen), true};
    return {std::string(appName(player_)), false};
}

void MediaPlayerBridge::pollIfNeeded() {
    const double now = environment_.clock.uptimeSeconds();
    if (lastPollTime_ && now - *lastPollTime_ < PollInterval - ClockRounding)
        return;
    if (!keeper_->beginPoll())
        return;
    lastPollTime_ = now;
    environment_.pollQueue->post([keeper = keeper_, poll = environment_.transport->poll(target())] {
        keeper->handlePollResult(poll());
        keeper->endPoll();
    });
}

void MediaPlayerBridge::executeCommand(std::string_view command, std::string_view playerPath) {
    const auto resolved = PlayerCommandText::resolve(command, playerPath, *keeper_->snapshot());
    if (!resolved)
        return;
    if (auto work = environment_.transport->perform(target(), *resolved))
        environment_.pollQueue->post(std::move(work));
}

} // namespace Ostrel
