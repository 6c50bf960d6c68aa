#pragma once

#include "OstrelPlatform/PlayerTransport.h"

#include <span>
#include <string>

namespace Ostrel {

struct MprisPlayer;

/// Which of the players on the bus is meant.
class MprisSelection {
public:
    struct Candidate {
        const MprisPlayer* player = nullptr;
        /// Whether it let a deadline pass and has not answered since; then any other comes first.
        bool isSilent = false;
    };

    /// The player that is called as the target; of several the one that plays, else the first. Where the user has not
    /// chosen the target, another may stand in for one that is not there: the one that is playing, else the first. A
    /// stand-in stays while no other is playing, so that a skin's "pause" and "play" reach the same one. Null when
    /// there is none. The candidates are sorted by their names on the bus.
    const MprisPlayer* select(std::span<const Candidate> candidates, const PlayerTarget& target);

    /// The first part of it.
    static const MprisPlayer* called(std::span<const Candidate> candidates, std::string_view name);

private:
    std::string standIn_;
};

} // namespace Ostrel
