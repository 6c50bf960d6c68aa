#pragma once

#include "OstrelPlatform/Linux/Players/BusValue.h"

#include <cstdint>
#include <string>

namespace Ostrel {

/// A track as a player on the bus describes it. What is missing, or of a type that makes no sense, is empty or 0.
struct MprisTrack {
    /// The player's name for it, an object path; empty when it has none.
    std::string path;
    /// Several are separated by commas.
    std::string artist;
    std::string title;
    std::string album;
    std::string genre;
    std::string lyrics;
    double durationSeconds = 0;
    /// A local path or a URL.
    std::string cover;
    /// A local path; empty when the track is none.
    std::string file;
    std::int64_t number = 0;
    std::int64_t year = 0;
    /// 0 to 5.
    std::int64_t rating = 0;
    /// Tells tracks apart; empty when nothing is known of this one.
    std::string identifier;

    /// Whether there is a place for a track but none in it, as while a player loads its first.
    bool isBare() const { return !path.empty() && identifier.empty(); }

    static MprisTrack fromMetadata(const BusProperties& metadata);

    friend bool operator==(const MprisTrack&, const MprisTrack&) = default;
};

} // namespace Ostrel
