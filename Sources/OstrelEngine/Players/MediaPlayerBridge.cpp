#include "OstrelEngine/Players/MediaPlayerBridge.h"

#include "OstrelEngine/Players/PlayerCommandText.h"
#include "OstrelPlatform/Clock.h"
#include "OstrelPlatform/PlayerTransport.h"
#include "OstrelPlatform/SerialQueue.h"

#include <atomic>
#include <utility>

namespace Ostrel {

namespace {

/// What a sum of intervals loses on the way; a whole interval counts as passed.
constexpr double ClockRounding = 1e-6;

} // namespace

/// Written by the main thread, read on the queue.
struct MediaPlayerBridge::Activity {
    std::atomic<double> lastUse = 0;
    /// Whether a piece on the queue is watching for the end of use.
    std::atomic<bool> isWatched = false;

    static void watch(
        const std::shared_ptr<Activity>& activity, SerialQueue& queue, PlayerTransport& transport, const Clock& clock) {
        queue.postAfter(RestInterval, [activity, &queue, &transport, &clock] {
            if (clock.uptimeSeconds() - activity->lastUse < RestInterval)
                return watch(activity, queue, transport, clock);
            activity->isWatched = false;
            transport.rest();
        });
    }
};

MediaPlayerBridge::MediaPlayerBridge(MacOSPlayer player, Environment environment)
    : player_(player)
    , environment_(std::move(environment))
    , activity_(std::make_shared<Activity>()) { }

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
    noteUse();
    environment_.pollQueue->post([keeper = keeper_, poll = environment_.transport->poll(target())] {
        keeper->handlePollResult(poll());
        keeper->endPoll();
    });
}

void MediaPlayerBridge::executeCommand(std::string_view command, std::string_view playerPath) {
    const auto resolved = PlayerCommandText::resolve(command, playerPath, *keeper_->snapshot());
    if (!resolved)
        return;
    noteUse();
    if (auto work = environment_.transport->perform(target(), *resolved))
        environment_.pollQueue->post(std::move(work));
}

void MediaPlayerBridge::noteUse() {
    activity_->lastUse = environment_.clock.uptimeSeconds();
    if (!activity_->isWatched.exchange(true))
        Activity::watch(activity_, *environment_.pollQueue, *environment_.transport, environment_.clock);
}

} // namespace Ostrel
