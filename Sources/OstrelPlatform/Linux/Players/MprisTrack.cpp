#include "OstrelPlatform/Linux/Players/MprisTrack.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelCore/Text/URLScheme.h"

#include <QUrl>

#include <algorithm>
#include <cmath>

namespace Ostrel {

namespace {

constexpr double MicrosecondsPerSecond = 1e6;

std::string textOf(const BusProperties& metadata, std::string_view key) {
    return property(metadata, key).text().value_or("");
}

double numberOf(const BusProperties& metadata, std::string_view key) {
    return std::max(0.0, property(metadata, key).number().value_or(0));
}

/// Empty unless it is a file of this machine.
std::string localPath(const std::string& url) {
    const QUrl parsed(QString::fromStdString(url));
    const bool isLocal = parsed.isLocalFile() && (parsed.host().isEmpty() || parsed.host() == "localhost");
    return isLocal ? parsed.path(QUrl::FullyDecoded).toStdString() : std::string();
}

std::string coverOf(const std::string& url) {
    const auto scheme = lowerCased(urlScheme(url));
    if (scheme == "http" || scheme == "https" || scheme == "data")
        return url;
    return url.starts_with('/') ? url : localPath(url);
}

/// Of "2009-05-01T…" or a bare year.
std::int64_t yearOf(const BusValue& date) {
    constexpr std::size_t Digits = 4;
    const auto text = date.text();
    if (!text)
        return std::max<std::int64_t>(0, numericAsInt64(date.number().value_or(0)));
    return std::max<std::int64_t>(0, parseInteger(std::string_view(*text).substr(0, Digits)).value_or(0));
}

/// A file is told apart by its place: players name tracks by their number in a list that may be shuffled, or all alike.
/// What comes over a network may change its title in one place, as a radio does.
std::string identifierOf(const MprisTrack& track, const std::string& url) {
    if (!track.file.empty())
        return url;
    const auto words = url + "::" + track.artist + "::" + track.title + "::" + track.album;
    return words.find_first_not_of(':') == std::string::npos ? std::string() : track.path + "::" + words;
}

} // namespace

MprisTrack MprisTrack::fromMetadata(const BusProperties& metadata) {
    MprisTrack track;
    track.path = textOf(metadata, "mpris:trackid");
    track.artist = textOf(metadata, "xesam:artist");
    if (track.artist.empty())
        track.artist = textOf(metadata, "xesam:albumArtist");
    track.title = textOf(metadata, "xesam:title");
    track.album = textOf(metadata, "xesam:album");
    track.genre = textOf(metadata, "xesam:genre");
    track.lyrics = textOf(metadata, "xesam:asText");
    track.durationSeconds = numberOf(metadata, "mpris:length") / MicrosecondsPerSecond;
    track.cover = coverOf(textOf(metadata, "mpris:artUrl"));
    const auto url = textOf(metadata, "xesam:url");
    track.file = localPath(url);
    track.number = numericAsInt64(numberOf(metadata, "xesam:trackNumber"));
    track.year = yearOf(property(metadata, "xesam:contentCreated"));
    track.rating = std::min<std::int64_t>(5, numericAsInt64(std::round(numberOf(metadata, "xesam:userRating") * 5)));
    track.identifier = identifierOf(track, url);
    return track;
}

} // namespace Ostrel
