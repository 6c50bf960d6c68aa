#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

class MeasureHost;
class MediaPlayerBridge;
struct MediaPlayerState;

/// What of a player's state a measure yields.
enum class NowPlayingType : std::uint8_t {
    NONE,
    ARTIST,
    TITLE,
    ALBUM,
    GENRE,
    LYRICS,
    COVER,
    FILE,
    DURATION,
    POSITION,
    PROGRESS,
    STATE,
    STATUS,
    VOLUME,
    SHUFFLE,
    REPEAT,
    RATING,
    NUMBER,
    YEAR,
};

/// One field of a music player's state. A measure that names a player owns the way to it and runs an action when the
/// track changes; others name such a measure and share it.
class NowPlayingMeasure final : public BaseMeasure {
public:
    NowPlayingMeasure(
        const MeasureDefinition& definition, std::string skinPath, const Platform& platform, MeasureHost& host);

    void update() override;
    bool executeCommand(std::string_view text) override;
    void resolveReferences() override;

private:
    void readPlayerName(const Platform& platform);
    void runTrackChangeActionIfNeeded(const MediaPlayerState& state);
    void publishState(const MediaPlayerState& state);
    std::string formatTime(double seconds) const;

    MeasureHost& host_;
    NowPlayingType playerType_;
    bool disableLeadingZero_;
    /// Whether this measure names the player itself.
    bool isParentOwner_ = false;
    std::shared_ptr<MediaPlayerBridge> bridge_;
    std::optional<std::string> parentSectionName_;
    // Its own, or its parent's.
    std::string effectivePlayerPath_;
    std::string effectiveTrackChangeAction_;
    std::int64_t lastSeenTrackChangeSerial_ = 0;
    /// Of the state that was published last; 0 when none was.
    std::uint64_t publishedRevision_ = 0;
};

} // namespace Ostrel
