#include "OstrelPlatform/Mac/AppleScriptCommands.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelPlatform/Mac/AppleScriptText.h"

#include <cmath>

namespace Ostrel::AppleScriptCommands {

namespace {

using Kind = PlayerCommand::Kind;

// Applications differ in their words. A script that needs such a word tries one after another, and does nothing where
// none is understood.

std::string tell(const std::string& app, const std::string& what) {
    return "tell application \"" + app + "\" to " + what;
}

/// On the scale of 100 first, then on that of 5.
std::string setRating(const std::string& app, int stars) {
    return "tell application \"" + app
        + "\"\n"
          "    try\n"
          "        set t to current track\n"
          "        try\n"
          "            set rating of t to "
        + formatInteger(stars * 20)
        + "\n"
          "        on error\n"
          "            try\n"
          "                set rating of t to "
        + formatInteger(stars)
        + "\n"
          "            end try\n"
          "        end try\n"
          "    end try\n"
          "end tell";
}

/// One property, or else another.
std::string setEither(const std::string& app, const std::string& first, const std::string& second) {
    return "tell application \"" + app
        + "\"\n"
          "    try\n"
          "        set "
        + first
        + "\n"
          "    on error\n"
          "        try\n"
          "            set "
        + second
        + "\n"
          "        end try\n"
          "    end try\n"
          "end tell";
}

std::string setShuffle(const std::string& app, bool isOn) {
    const std::string value = isOn ? "true" : "false";
    return setEither(app, "shuffling to " + value, "shuffle enabled to " + value);
}

std::string setRepeat(const std::string& app, bool isOn) {
    return isOn ? setEither(app, "repeating to true", "song repeat to all")
                : setEither(app, "repeating to false", "song repeat to off");
}

std::string open(const std::string& app, const std::string& path) {
    return path.empty() ? tell(app, "activate") : openPathScript(path);
}

std::string toggle(const std::string& app, const std::string& path) {
    return "if application \"" + app
        + "\" is running then\n"
          "    "
        + tell(app, "quit")
        + "\n"
          "else\n"
          "    "
        + open(app, path)
        + "\n"
          "end if";
}

} // namespace

std::string script(std::string_view appName, const PlayerCommand& command) {
    const auto app = appleScriptStringLiteral(appName);
    switch (command.kind) {
    case Kind::Play:
        return tell(app, "play");
    case Kind::Pause:
        return tell(app, "pause");
    case Kind::PlayPause:
        return tell(app, "playpause");
    case Kind::Stop:
        return tell(app, "stop");
    case Kind::Next:
        return tell(app, "next track");
    case Kind::Previous:
        return tell(app, "previous track");
    case Kind::SetPosition:
        return tell(app, "set player position to " + formatInteger(numericAsInt64(std::round(command.seconds))));
    case Kind::SetVolume:
        return tell(app, "set sound volume to " + formatInteger(command.value));
    case Kind::SetRating:
        return setRating(app, command.value);
    case Kind::SetShuffle:
        return setShuffle(app, command.value != 0);
    case Kind::SetRepeat:
        return setRepeat(app, command.value != 0);
    case Kind::OpenPlayer:
        return open(app, command.path);
    case Kind::ClosePlayer:
        return tell(app, "quit");
    case Kind::TogglePlayer:
        return toggle(app, command.path);
    }
    return {};
}

std::string openPathScript(std::string_view path) {
    return "do shell script \"/usr/bin/open \" & quoted form of \"" + appleScriptStringLiteral(path) + "\"";
}

} // namespace Ostrel::AppleScriptCommands
