#pragma once

#include "OstrelEngine/Players/MacOSPlayer.h"
#include "OstrelPlatform/Log.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

class Clock;
class MediaPlayerBridge;
class PlayerTransport;
class SerialQueue;

/// One bridge a player, shared by the measures of all skins. A program has one of these; it outlives all skins.
class MediaPlayerBridges {
public:
    struct Environment {
        /// One for each bridge; never null.
        std::function<std::unique_ptr<PlayerTransport>()> makeTransport;
        std::function<std::unique_ptr<SerialQueue>(std::string_view label)> makeQueue;
        const Clock& clock;
        LogLine log;
    };

    explicit MediaPlayerBridges(Environment environment);
    ~MediaPlayerBridges();

    /// Made at the first call. Nothing is asked before the bridge is told to poll.
    std::shared_ptr<MediaPlayerBridge> shared(MacOSPlayer player);
    /// Forgets all bridges; those in use go on for their users.
    void resetAll();

    /// The application that the user chose, which then stands for every player; absent or empty means none. Any thread.
    void setAppNameOverride(std::optional<std::string> name);
    std::optional<std::string> appNameOverride() const;

    const LogLine& log() const { return environment_.log; }

private:
    /// Shared with the bridges, which may outlive this.
    struct Override {
        std::mutex lock;
        std::optional<std::string> name;
    };
    static std::optional<std::string> nameOf(Override& chosen);

    Environment environment_;
    std::shared_ptr<Override> override_ = std::make_shared<Override>();
    /// Guards `instances_`.
    std::mutex instanceLock_;
    std::map<MacOSPlayer, std::shared_ptr<MediaPlayerBridge>> instances_;
};

} // namespace Ostrel
