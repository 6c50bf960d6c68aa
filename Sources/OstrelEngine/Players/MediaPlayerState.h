#pragma once

#include <cstdint>
#include <string>

namespace Ostrel {

/// What a music player was doing when it was last asked. All numbers are finite.
struct MediaPlayerState {
    std::string artist = {};
    std::string title = {};
    std::string album = {};
    std::string genre = {};
    std::string lyrics = {};
    /// Seconds, 0 or more.
    double duration = 0;
    double position = 0;
    /// Percent.
    double progress = 0;
    /// 0 stopped, 1 playing, 2 paused.
    std::int64_t state = 0;
    /// 0 player not reachable, 1 player open.
    std::int64_t status = 0;
    /// Percent.
    double volume = 0;
    std::int64_t shuffle = 0;
    std::int64_t repeatMode = 0;
    /// 0 to 5.
    std::int64_t rating = 0;
    /// A file path or a URL.
    std::string coverArtPath = {};
    std::string filePath = {};
    std::int64_t trackNumber = 0;
    std::int64_t year = 0;
    /// As the player tells it.
    std::string trackIdentifier = {};
    /// Counts the tracks that were seen since the player came, the first one too.
    std::int64_t trackChangeSerial = 0;

    friend bool operator==(const MediaPlayerState&, const MediaPlayerState&) = default;
};

} // namespace Ostrel
