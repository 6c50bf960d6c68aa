#include "OstrelPlatform/Mac/AppleScriptStates.h"

#include "OstrelPlatform/Mac/AppleScriptText.h"

#include <initializer_list>

namespace Ostrel::AppleScriptStates {

namespace {

constexpr std::string_view Handlers = R"(on replaceText(findText, replacementText, subjectText)
set AppleScript's text item delimiters to findText
set textItems to every text item of subjectText
set AppleScript's text item delimiters to replacementText
set replacedText to textItems as text
set AppleScript's text item delimiters to ""
return replacedText
end replaceText
on jsonEscape(inputText)
set outputText to inputText as text
set slash to ASCII character 92
set outputText to my replaceText(slash, slash & slash, outputText)
set outputText to my replaceText(quote, slash & quote, outputText)
set outputText to my replaceText(return, slash & "n", outputText)
set outputText to my replaceText(linefeed, slash & "n", outputText)
return outputText
end jsonEscape
on jsonPair(keyName, valueText)
return quote & keyName & quote & ":" & quote & my jsonEscape(valueText as text) & quote
end jsonPair
)";

constexpr std::string_view Beginning = R"(    try
        set playerState to player state as string
    on error
        return "NOT_RUNNING"
    end try
    if playerState is "stopped" then return "STOPPED"
    try
        set t to current track
)";

constexpr std::string_view StarsOfTrack = R"(        set trackRating to 0
        try
            set trackRating to rating of t as integer
            if trackRating > 5 then set trackRating to trackRating div 20
            if trackRating < 0 then set trackRating to 0
            if trackRating > 5 then set trackRating to 5
        end try
)";

constexpr std::string_view FileOfTrack = R"(        set trackFilePath to ""
        try
            set trackLocation to location of t
            set trackFilePath to POSIX path of trackLocation
        end try
)";

constexpr std::string_view Ending
    = R"(        if trackIdentifier is "" then set trackIdentifier to trackArtist & "::" & trackTitle & "::" & trackAlbum
        set stateVal to 0
        if playerState is "playing" then
            set stateVal to 1
        else if playerState is "paused" then
            set stateVal to 2
        end if
        set progressVal to 0
        if trackDuration > 0 then set progressVal to (trackPosition / trackDuration) * 100
        set payload to "{" & my jsonPair("artist", trackArtist)
        set payload to payload & "," & my jsonPair("title", trackTitle)
        set payload to payload & "," & my jsonPair("album", trackAlbum)
        set payload to payload & "," & my jsonPair("genre", trackGenre)
        set payload to payload & "," & my jsonPair("lyrics", trackLyrics)
        set payload to payload & "," & my jsonPair("duration", ((round trackDuration) as integer) as string)
        set payload to payload & "," & my jsonPair("position", ((round trackPosition) as integer) as string)
        set payload to payload & "," & my jsonPair("progress", ((round progressVal) as integer) as string)
        set payload to payload & "," & my jsonPair("state", stateVal as string)
        set payload to payload & "," & my jsonPair("volume", trackVolume as string)
        set payload to payload & "," & my jsonPair("shuffle", shuffleVal as string)
        set payload to payload & "," & my jsonPair("repeatMode", repeatVal as string)
        set payload to payload & "," & my jsonPair("rating", trackRating as string)
        set payload to payload & "," & my jsonPair("coverArtPath", coverArtPath)
        set payload to payload & "," & my jsonPair("filePath", trackFilePath)
        set payload to payload & "," & my jsonPair("trackNumber", trackNum as string)
        set payload to payload & "," & my jsonPair("year", trackYear as string)
        set payload to payload & "," & my jsonPair("trackIdentifier", trackIdentifier) & "}"
        return payload
    on error
        return "NOT_RUNNING"
    end try
)";

std::string set(std::string_view variable, std::string_view value) {
    return "        set " + std::string(variable) + " to " + std::string(value) + "\n";
}

/// A variable that keeps its first value where the property cannot be read; the alternative is another property for
/// that case.
std::string read(
    std::string_view variable, std::string_view first, std::string_view property, std::string_view alternative = {}) {
    const std::string name(variable);
    auto text = set(variable, first) + "        try\n            set " + name + " to " + std::string(property) + "\n";
    if (!alternative.empty())
        text += "        on error\n            try\n                set " + name + " to " + std::string(alternative)
            + "\n            end try\n";
    return text + "        end try\n";
}

/// A variable that is 1 where a condition holds, or else the alternative.
std::string readSwitch(std::string_view variable, std::string_view condition, std::string_view alternative = {}) {
    const auto line = [&](std::string_view test) {
        return "if " + std::string(test) + " then set " + std::string(variable) + " to 1\n";
    };
    auto text = set(variable, "0") + "        try\n            " + line(condition);
    if (!alternative.empty())
        text += "        on error\n            try\n                " + line(alternative) + "            end try\n";
    return text + "        end try\n";
}

/// The picture inside the track as a file, which is written anew by every poll.
std::string coverFile(std::string_view fileName) {
    return R"(        try
            if (count of artworks of t) > 0 then
                set coverArtPath to (POSIX path of (path to temporary items from user domain)) & ")"
        + std::string(fileName) + R"("
                set coverData to raw data of artwork 1 of t
                set coverHandle to open for access (POSIX file coverArtPath) with write permission
                set eof of coverHandle to 0
                write coverData to coverHandle
                close access coverHandle
            end if
        on error
            try
                close access (POSIX file coverArtPath)
            end try
        end try
)";
}

std::string indented(std::string_view lines) {
    std::string text;
    while (!lines.empty()) {
        const auto end = lines.find('\n') + 1;
        text.append("    ").append(lines.substr(0, end));
        lines.remove_prefix(end);
    }
    return text;
}

std::string script(std::string_view app, std::initializer_list<std::string> fields) {
    std::string text(Handlers);
    text.append("tell application \"").append(appleScriptStringLiteral(app)).append("\"\n").append(Beginning);
    for (const auto& field : fields)
        text += field;
    return text.append(Ending).append("end tell");
}

std::string names() {
    return read("trackArtist", "\"\"", "artist of t as text") + read("trackTitle", "\"\"", "name of t as text")
        + read("trackAlbum", "\"\"", "album of t as text");
}

std::string numbers() {
    return read("trackPosition", "0", "player position as real") + read("trackNum", "0", "track number of t as integer")
        + read("trackYear", "0", "year of t as integer");
}

std::string wordsOfLibrary() {
    return read("trackGenre", "\"\"", "genre of t as text") + read("trackLyrics", "\"\"", "lyrics of t as text");
}

} // namespace

std::string scriptFor(std::string_view appName) {
    if (appName == "Music")
        return appleMusicScript();
    if (appName == "Spotify")
        return spotifyScript();
    return genericPlayerScript(appName);
}

std::string appleMusicScript() {
    return script("Music",
        {names(), wordsOfLibrary(), read("trackDuration", "0", "duration of t as integer"), numbers(),
            read("trackVolume", "0", "sound volume as integer"), std::string(StarsOfTrack), std::string(FileOfTrack),
            read("trackIdentifier", "\"\"", "persistent ID of t as text"), set("coverArtPath", "\"\""),
            coverFile("ostrel-nowplaying-music-cover.jpg"), readSwitch("shuffleVal", "shuffle enabled"),
            readSwitch("repeatVal", "song repeat is not off")});
}

/// Its durations are milliseconds, its covers URLs.
std::string spotifyScript() {
    return script("Spotify",
        {names(), set("trackGenre", "\"\""), set("trackLyrics", "\"\""),
            read("trackDuration", "0", "(duration of t) / 1000"), numbers(),
            read("trackVolume", "50", "sound volume as integer"), set("trackRating", "\"0\""),
            set("trackFilePath", "\"\""), read("trackIdentifier", "\"\"", "id of t as text"),
            read("coverArtPath", "\"\"", "artwork url of t as text"), readSwitch("shuffleVal", "shuffling"),
            readSwitch("repeatVal", "repeating")});
}

std::string genericPlayerScript(std::string_view appName) {
    return script(appName,
        {names(), wordsOfLibrary(), read("trackDuration", "0", "duration of t as real"), numbers(),
            read("trackVolume", "50", "sound volume as integer"), std::string(StarsOfTrack), std::string(FileOfTrack),
            read("trackIdentifier", "\"\"", "persistent ID of t as text", "id of t as text"),
            read("coverArtPath", "\"\"", "artwork url of t as text"),
            "        if coverArtPath is \"\" then\n" + indented(coverFile("ostrel-nowplaying-generic-cover.jpg"))
                + "        end if\n",
            readSwitch("shuffleVal", "shuffling", "shuffle enabled"),
            readSwitch("repeatVal", "repeating", "song repeat is not off")});
}

} // namespace Ostrel::AppleScriptStates
