#pragma once

#include <functional>
#include <optional>
#include <string>

namespace Ostrel {

/// The player that is meant.
struct PlayerTarget {
    /// As the desktop names the application.
    std::string name;
    /// Whether the user chose it, rather than a skin: then no other may stand in for it.
    bool isChosenByUser = false;

    friend bool operator==(const PlayerTarget&, const PlayerTarget&) = default;
};

/// What a player is to do; relative amounts and toggles are resolved already.
struct PlayerCommand {
    enum class Kind {
        Play,
        Pause,
        PlayPause,
        Stop,
        Next,
        Previous,
        SetPosition,
        SetVolume,
        SetRating,
        SetShuffle,
        SetRepeat,
        OpenPlayer,
        ClosePlayer,
        /// Closes a player that runs, opens one that does not.
        TogglePlayer,
    };

    Kind kind = Kind::Play;
    /// `SetPosition`: seconds from the beginning, 0 or more.
    double seconds = 0;
    /// `SetVolume`: percent. `SetRating`: 0 to 5 stars. `SetShuffle`, `SetRepeat`: 0 or 1.
    int value = 0;
    /// `OpenPlayer`, `TogglePlayer`: what to open in place of the player itself; may be empty.
    std::string path = {};

    friend bool operator==(const PlayerCommand&, const PlayerCommand&) = default;
};

/// The way to the desktop's music players. Each operation is called on the main thread, where it only looks at its
/// arguments, and returns what has to wait for the outside: work for one queue, which ends before the transport does.
class PlayerTransport {
public:
    /// The player's state as text: "NOT_RUNNING", "STOPPED", or the payload, a JSON object of strings. Absent when the
    /// player did not answer in time.
    using Poll = std::function<std::optional<std::string>()>;
    /// Null when nothing is left to do.
    using Work = std::function<void()>;

    virtual ~PlayerTransport() = default;
    /// Never null.
    virtual Poll poll(const PlayerTarget& target) = 0;
    virtual Work perform(const PlayerTarget& target, const PlayerCommand& command) = 0;
    /// Runs on the queue when nothing has been asked for some seconds: time to let go of what polls need.
    virtual void rest() { }
};

} // namespace Ostrel
