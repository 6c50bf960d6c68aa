#include "OstrelPlatform/Linux/Players/MprisPlayer.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace Ostrel {

namespace {

constexpr double MicrosecondsPerSecond = 1e6;

/// A second player of a kind has ".instance" and a number behind its name.
std::string_view withoutInstance(std::string_view name) {
    const auto at = name.rfind(".instance");
    return at == std::string_view::npos ? name : name.substr(0, at);
}

std::string rounded(double value) {
    return formatInteger(numericAsInt64(std::nearbyint(value)));
}

} // namespace

bool MprisPlayer::isCalled(std::string_view name) const {
    const auto ownName = std::string_view(busName).substr(std::min(NamePrefix.size(), busName.size()));
    for (const auto candidate : {std::string_view(busName), ownName, withoutInstance(ownName),
             std::string_view(identity), std::string_view(desktopEntry)}) {
        if (!candidate.empty() && equalsIgnoringCase(candidate, name))
            return true;
    }
    return false;
}

void MprisPlayer::apply(const BusProperties& properties) {
    for (const auto& [name, value] : properties) {
        if (name == "Identity")
            identity = value.text().value_or("");
        else if (name == "DesktopEntry")
            desktopEntry = value.text().value_or("");
        else if (name == "PlaybackStatus")
            playbackStatus = value.text().value_or("");
        else if (name == "Shuffle")
            isShuffling = value.boolean().value_or(false);
        else if (name == "LoopStatus")
            isRepeating = value.text().value_or("None") != "None";
        else if (name == "Volume")
            volume = std::clamp(value.number().value_or(0) * 100, 0.0, 100.0);
        else if (name == "Position")
            setPosition(value);
        else if (name == "Metadata")
            track = MprisTrack::fromMetadata(value.dictionary());
        else if (name == "Rating")
            rating = value.number();
    }
}

void MprisPlayer::setPosition(const BusValue& microseconds) {
    positionSeconds = std::max(0.0, microseconds.number().value_or(0)) / MicrosecondsPerSecond;
}

std::string MprisPlayer::answer() const {
    if ((!isPlaying() && playbackStatus != "Paused") || track.isBare())
        return "STOPPED";
    // A player may count on a little beyond the end.
    const double duration = track.durationSeconds;
    const double position = duration > 0 ? std::min(positionSeconds, duration) : positionSeconds;
    const double progress = duration > 0 ? position / duration * 100 : 0;
    const auto stars = rating ? std::clamp(std::round(*rating * 5), 0.0, 5.0) : static_cast<double>(track.rating);
    return nlohmann::ordered_json{
        {"artist", track.artist},
        {"title", track.title},
        {"album", track.album},
        {"genre", track.genre},
        {"lyrics", track.lyrics},
        {"duration", rounded(duration)},
        {"position", rounded(position)},
        {"progress", rounded(progress)},
        {"state", isPlaying() ? "1" : "2"},
        {"volume", rounded(volume)},
        {"shuffle", isShuffling ? "1" : "0"},
        {"repeatMode", isRepeating ? "1" : "0"},
        {"rating", rounded(stars)},
        {"coverArtPath", track.cover},
        {"filePath", track.file},
        {"trackNumber", formatInteger(track.number)},
        {"year", formatInteger(track.year)},
        {"trackIdentifier", track.identifier},
    }
        .dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

} // namespace Ostrel
