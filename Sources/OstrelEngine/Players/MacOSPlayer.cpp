#include "OstrelEngine/Players/MacOSPlayer.h"

#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <string>

namespace Ostrel {

namespace {

constexpr std::string_view MusicNames[] = {"ITUNES", "APPLEMUSIC", "MUSIC"};
constexpr std::string_view RedirectedNames[]
    = {"WINAMP", "WMP", "WLM", "MEDIAMONKEY", "FOOBAR", "CAD", "AIMP", "MUSICBEE", "FOOBAR2000", "VLCPLAYER", "VLC"};

} // namespace

std::string_view appName(MacOSPlayer player) {
    return player == MacOSPlayer::appleMusic ? "Music" : "Spotify";
}

std::optional<MacOSPlayer> macOSPlayerFrom(std::string_view rainmeterName, const LogLine& log) {
    const auto name = upperCased(rainmeterName);
    if (std::ranges::find(MusicNames, name) != std::end(MusicNames))
        return MacOSPlayer::appleMusic;
    if (name == "SPOTIFY")
        return MacOSPlayer::spotify;
    if (std::ranges::find(RedirectedNames, name) == std::end(RedirectedNames))
        return std::nullopt;
    log("[NowPlaying] Player \"" + std::string(rainmeterName)
        + "\" is not available on macOS — using Spotify instead.");
    return MacOSPlayer::spotify;
}

} // namespace Ostrel
