#include "OstrelEngine/Players/MediaPlayerBridges.h"

#include "OstrelEngine/Players/MediaPlayerBridge.h"
#include "OstrelPlatform/PlayerTransport.h"
#include "OstrelPlatform/SerialQueue.h"

#include <utility>

namespace Ostrel {

MediaPlayerBridges::MediaPlayerBridges(Environment environment)
    : environment_(std::move(environment)) { }

MediaPlayerBridges::~MediaPlayerBridges() = default;

std::shared_ptr<MediaPlayerBridge> MediaPlayerBridges::shared(MacOSPlayer player) {
    const std::scoped_lock lock(instanceLock_);
    auto& bridge = instances_[player];
    if (!bridge)
        bridge = std::make_shared<MediaPlayerBridge>(player,
            MediaPlayerBridge::Environment{.transport = environment_.makeTransport(),
                .pollQueue = environment_.makeQueue(MediaPlayerBridge::PollQueueLabel),
                .clock = environment_.clock,
                .appNameOverride = [chosen = override_] { return nameOf(*chosen); }});
    return bridge;
}

void MediaPlayerBridges::resetAll() {
    const std::scoped_lock lock(instanceLock_);
    instances_.clear();
}

void MediaPlayerBridges::setAppNameOverride(std::optional<std::string> name) {
    const std::scoped_lock lock(override_->lock);
    override_->name = name && !name->empty() ? std::move(name) : std::nullopt;
}

std::optional<std::string> MediaPlayerBridges::appNameOverride() const {
    return nameOf(*override_);
}

std::optional<std::string> MediaPlayerBridges::nameOf(Override& chosen) {
    const std::scoped_lock lock(chosen.lock);
    return chosen.name;
}

} // namespace Ostrel
