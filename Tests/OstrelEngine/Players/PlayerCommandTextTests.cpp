#include "OstrelEngine/Players/MediaPlayerState.h"
#include "OstrelEngine/Players/PlayerCommandText.h"
#include "OstrelPlatform/Mac/AppleScriptCommands.h"

#include <gtest/gtest.h>

#include <string>

namespace Ostrel {
namespace {

/// The script that a command becomes for a player called `APP`; "-" when it is refused.
std::string scriptOf(std::string_view command, const MediaPlayerState& state = {}, std::string_view playerPath = "") {
    const auto resolved = PlayerCommandText::resolve(command, playerPath, state);
    return resolved ? AppleScriptCommands::script("APP", *resolved) : "-";
}

TEST(PlayerCommandTextTests, readsVerbsInAnyCaseAndSpacing) {
    const struct {
        const char* command;
        const char* words;
    } rows[] = {
        {"play", "play"},
        {"Pause", "pause"},
        {"PlayPause", "playpause"},
        {"STOP", "stop"},
        {"  next  ", "next track"},
        {"previous and more", "previous track"},
        {"next\u00a0one", "next track"},
        {"\tClosePlayer\n", "quit"},
        {"OpenPlayer", "activate"},
        {"OpenPlayer \"\"", "activate"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(scriptOf(row.command), std::string("tell application \"APP\" to ") + row.words) << row.command;
    for (const char* command : {"", "  ", "jump", "play,", "set position"})
        EXPECT_EQ(scriptOf(command), "-") << command;
}

TEST(PlayerCommandTextTests, resolvesAmounts) {
    const MediaPlayerState state{.duration = 200, .position = 30, .volume = 94.5};
    const MediaPlayerState unknown{.position = 30};
    const struct {
        const char* command;
        const char* words;
        const MediaPlayerState& state;
    } rows[] = {
        {"SetPosition 50", "player position to 100", state},
        {"SetPosition +10", "player position to 50", state},
        {"SetPosition -10", "player position to 10", state},
        {"SetPosition -1e300", "player position to 0", state},
        {"SetPosition 150", "player position to 200", state},
        {"SetPosition 0.25", "player position to 1", state},
        {"SetPosition 50", "player position to 50", unknown},
        {"SetPosition -50", "player position to 0", unknown},
        {"SetPosition 1e300", "player position to 9223372036854775807", unknown},
        {"SetPosition", nullptr, state},
        {"SetPosition inf", nullptr, unknown},
        {"SetPosition nan", nullptr, state},
        {"SetPosition 1:30", nullptr, state},
        {"SetVolume +10", "sound volume to 100", state},
        {"SetVolume +3", "sound volume to 98", state},
        {"SetVolume -200", "sound volume to 0", state},
        {"SetVolume 40", "sound volume to 40", state},
        {"SetVolume 9223372036854775807", "sound volume to 100", state},
        {"SetVolume -9223372036854775808", "sound volume to 0", state},
        {"SetVolume 50.5", nullptr, state},
        {"SetVolume abc", nullptr, state},
        {"SetVolume 1 2", nullptr, state},
    };
    for (const auto& row : rows)
        EXPECT_EQ(scriptOf(row.command, row.state),
            row.words ? std::string("tell application \"APP\" to set ") + row.words : "-")
            << row.command;
}

TEST(PlayerCommandTextTests, togglesAndRatesWithinBounds) {
    using Toggle = std::optional<int>;
    EXPECT_EQ(PlayerCommandText::resolveToggleState("-1", 0), Toggle(1));
    EXPECT_EQ(PlayerCommandText::resolveToggleState(" -1 ", 1), Toggle(0));
    EXPECT_EQ(PlayerCommandText::resolveToggleState("1", 1), Toggle(1));
    EXPECT_EQ(PlayerCommandText::resolveToggleState("0", 1), Toggle(0));
    for (const char* command : {"SetRepeat 2", "SetShuffle -2", "SetShuffle on", "SetRepeat", "SetRating 6",
             "SetRating -1", "SetRating 2.5", "SetRating"})
        EXPECT_EQ(scriptOf(command), "-") << command;
}

TEST(PlayerCommandTextTests, writesTheLongerScripts) {
    EXPECT_EQ(scriptOf("SetRating 3"), R"(tell application "APP"
    try
        set t to current track
        try
            set rating of t to 60
        on error
            try
                set rating of t to 3
            end try
        end try
    end try
end tell)");
    EXPECT_EQ(scriptOf("SetShuffle -1", {.shuffle = 1}), R"(tell application "APP"
    try
        set shuffling to false
    on error
        try
            set shuffle enabled to false
        end try
    end try
end tell)");
    const std::string repeat = R"(tell application "APP"
    try
        set repeating to true
    on error
        try
            set song repeat to all
        end try
    end try
end tell)";
    EXPECT_EQ(scriptOf("SetRepeat 1"), repeat);
    EXPECT_EQ(scriptOf("TogglePlayer"), R"(if application "APP" is running then
    tell application "APP" to quit
else
    tell application "APP" to activate
end if)");
}

TEST(PlayerCommandTextTests, opensThePathThatIsMeant) {
    const auto opening = [](const std::string& path) {
        return "do shell script \"/usr/bin/open \" & quoted form of \"" + path + "\"";
    };
    EXPECT_EQ(scriptOf("OpenPlayer \"/Applications/Some Player.app\""), opening("/Applications/Some Player.app"));
    EXPECT_EQ(
        scriptOf("OpenPlayer '/a'", {}, " \"C:\\My \"\"Player\"\".exe\" "), opening(R"(C:\\My \"\"Player\"\".exe)"));
    EXPECT_EQ(scriptOf("OpenPlayer \"/a'"), opening("\\\"/a'"));
    EXPECT_EQ(scriptOf("TogglePlayer /a"),
        "if application \"APP\" is running then\n    tell application \"APP\" to quit\nelse\n    " + opening("/a")
            + "\nend if");
    EXPECT_EQ(AppleScriptCommands::script("A \"B\" \\", {.kind = PlayerCommand::Kind::Play}),
        R"(tell application "A \"B\" \\" to play)");
}

} // namespace
} // namespace Ostrel
