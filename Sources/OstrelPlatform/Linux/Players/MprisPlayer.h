#pragma once

#include "OstrelPlatform/Linux/Players/MprisTrack.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

/// A music player on the bus, as its properties and signals tell. The protocol is MPRIS 2.2.
struct MprisPlayer {
    static constexpr std::string_view NamePrefix = "org.mpris.MediaPlayer2.";

    std::string busName;
    /// The connection behind the name, from which its signals come.
    std::string owner;
    std::string identity;
    std::string desktopEntry;

    /// "Playing", "Paused" or "Stopped".
    std::string playbackStatus;
    bool isShuffling = false;
    bool isRepeating = false;
    /// Percent.
    double volume = 0;
    double positionSeconds = 0;
    MprisTrack track;
    /// 0 to 1. Not of the protocol: only some players can be given one.
    std::optional<double> rating;

    bool isPlaying() const { return playbackStatus == "Playing"; }
    /// Whether someone means this player by a name in any case: that on the bus, that for people, or that of its
    /// desktop entry.
    bool isCalled(std::string_view name) const;
    /// Takes over the properties of the application and of its player that are there.
    void apply(const BusProperties& properties);
    void setPosition(const BusValue& microseconds);
    /// What a poll is answered with.
    std::string answer() const;
};

} // namespace Ostrel
