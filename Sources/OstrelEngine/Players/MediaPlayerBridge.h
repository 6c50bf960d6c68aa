#pragma once

#include "OstrelEngine/Players/MacOSPlayer.h"
#include "OstrelEngine/Players/MediaPlayerStateKeeper.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

class Clock;
class PlayerTransport;
class SerialQueue;
struct PlayerTarget;

/// Polls one player for all measures that show it and sends it their commands. It polls in the background, only while a
/// measure asks, and at most once an interval for any number of measures. Main thread; no call blocks.
class MediaPlayerBridge {
public:
    /// Seconds.
    static constexpr double PollInterval = 0.14;
    /// Seconds without a poll after which the transport may let go of what polls need.
    static constexpr double RestInterval = 5;
    static constexpr std::string_view PollQueueLabel = "com.ostrel.mediaplayer";

    struct Environment {
        std::unique_ptr<PlayerTransport> transport;
        std::unique_ptr<SerialQueue> pollQueue;
        const Clock& clock;
        /// The application that the user chose for all players, if any.
        std::function<std::optional<std::string>()> appNameOverride;
    };

    MediaPlayerBridge(MacOSPlayer player, Environment environment);
    /// Waits for the poll or command that is under way.
    ~MediaPlayerBridge();

    MacOSPlayer player() const { return player_; }
    const MediaPlayerStateKeeper& keeper() const { return *keeper_; }
    std::string effectiveAppName() const;

    /// Asks the player unless it was asked just now or is being asked.
    void pollIfNeeded();
    /// Carries out a skin's command text, such as "SetVolume +10"; `playerPath` is what "OpenPlayer" opens. A text that
    /// is none does nothing.
    void executeCommand(std::string_view command, std::string_view playerPath);

private:
    struct Activity;

    PlayerTarget target() const;
    /// Tells the transport to rest, unless another use follows soon.
    void noteUse();

    MacOSPlayer player_;
    // What runs on the queue holds the keeper for itself and refers to the transport, which the queue must not outlive.
    std::shared_ptr<MediaPlayerStateKeeper> keeper_ = std::make_shared<MediaPlayerStateKeeper>();
    Environment environment_;
    std::optional<double> lastPollTime_;
    std::shared_ptr<Activity> activity_;
};

} // namespace Ostrel
