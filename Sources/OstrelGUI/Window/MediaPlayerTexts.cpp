#include "OstrelGUI/Window/MediaPlayerTexts.h"

#include <array>

namespace Ostrel::MediaPlayerTexts {

const std::string_view DefaultSubtitle
    = "Use the player specified in each skin's PlayerName= setting. Windows-only players (Winamp, foobar2000, AIMP, "
      "MusicBee, WMP, etc.) are automatically mapped to Spotify since they have no macOS equivalent.";
const std::string_view MusicSubtitle
    = "Apple Music (formerly iTunes). Supports full NowPlaying metadata including cover art, file path, rating, genre, "
      "track number, year, shuffle, and repeat.";
const std::string_view SpotifySubtitle
    = "Spotify. Supports core fields (artist, title, album, position, duration). Genre, track number, and year are not "
      "available via Spotify's AppleScript API.";
const std::string_view CustomSubtitle = "Enter any application name";

namespace {

constexpr std::array<std::string_view, 4> DefaultMode{
    "When set to Default, Ostrel reads the PlayerName= value from each skin's .ini file and maps it to a macOS app.",
    "iTunes, AppleMusic, and Music all map to Apple Music.",
    "Windows-only players (Winamp, foobar2000, AIMP, MusicBee, WMP, MediaMonkey, CAD, VLC) are automatically "
    "redirected "
    "to Spotify, since they have no macOS equivalent.",
    "Choosing Music, Spotify, or Custom above overrides this per-skin mapping globally for all widgets."};

constexpr std::array<std::string_view, 4> Permissions{
    "The first time Ostrel communicates with a player, macOS will show a prompt: \"“Ostrel” wants access to control "
    "“Spotify”.\"",
    "You must click Allow for NowPlaying to work. If you deny it, no track data will be returned.",
    "You can change this later in System Settings → Privacy & Security → Automation.",
    "Each target app requires its own separate permission grant."};

constexpr std::array<std::string_view, 4> CustomApps{
    "The Custom option lets you target any app that supports AppleScript media commands (player state, current track, "
    "play/pause, etc.).",
    "Known compatible apps: Music, Spotify, Swinsian, Vox.",
    "Apps like VLC have limited AppleScript support — basic transport commands may work, but track metadata may not.",
    "If the target app is not running or does not respond to the expected commands, NowPlaying fields will return "
    "empty "
    "values."};

constexpr std::array<Section, 3> Sections{{
    {"Default mode & Windows players", Symbol::circlingArrows, DefaultMode},
    {"Automation permissions", Symbol::lockShield, Permissions},
    {"Custom apps & compatibility", Symbol::musicNoteList, CustomApps},
}};

} // namespace

std::span<const Section> sections() {
    return Sections;
}

} // namespace Ostrel::MediaPlayerTexts
