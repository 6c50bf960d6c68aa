#include "OstrelEngine/Players/MediaPlayerBridge.h"
#include "OstrelPlatform/Linux/Players/LinuxPlayers.h"
#include "OstrelPlatform/Linux/Players/MprisTransport.h"
#include "OstrelPlatform/Linux/Time/LinuxClock.h"
#include "OstrelPlatform/SerialQueue.h"
#include "Support/MissingTool.h"
#include "Support/PlayerBus.h"
#include "Support/SoundServer.h"
#include "Support/WavBytes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <numbers>

// The players that people have, playing files, and a bridge as the application has it. What a player does is checked
// with a program that knows nothing of ours.

namespace Ostrel {
namespace {

void skipWithout(std::initializer_list<const char*> programs) {
    for (const auto* program : programs) {
        if (!hasProgram(program))
            OSTREL_SKIP_FOR_WANT_OF(program);
    }
}

using Tags = std::vector<std::pair<std::string, std::string>>;

/// A minute of one tone, with tags as WAV files carry them.
std::string taggedTone(const Tags& tags) {
    constexpr std::uint32_t RateHz = 8000;
    constexpr std::uint32_t Seconds = 60;
    const auto format = littleEndianText(1, 2) + littleEndianText(1, 2) + littleEndianText(RateHz, 4)
        + littleEndianText(2 * RateHz, 4) + littleEndianText(2, 2) + littleEndianText(16, 2);
    std::string info = "INFO";
    for (const auto& [name, text] : tags)
        info += wavChunk(name, text + std::string(2 - text.size() % 2, '\0')); // some readers forget the padding
    std::vector<int> samples;
    for (std::uint32_t i = 0; i < RateHz * Seconds; ++i)
        samples.push_back(static_cast<int>(3000 * std::sin(2 * std::numbers::pi * 440 * i / RateHz)));
    return wavFile(wavChunk("fmt ", format) + wavChunk("LIST", info) + wavChunk("data", integerSamples(samples)));
}

class RealPlayer {
public:
    RealPlayer(PlayerBus& bus, std::string name)
        : bus_(bus)
        , name_(std::move(name)) { }

    /// What the player shows to the bus's own tool.
    std::string shows(const std::string& what) const { return bus_.playerctl("-p " + name_ + " " + what); }
    bool comesToShow(const std::string& what, const std::string& value) const {
        return comesTrue([&] { return shows(what) == value; });
    }
    template <typename Condition> bool comesToState(Condition condition) {
        return comesTrue([&] {
            bridge.pollIfNeeded();
            return condition(bridge.keeper().state());
        });
    }
    void tell(std::string_view command) { bridge.executeCommand(command, ""); }

private:
    LinuxClock clock_;
    PlayerBus& bus_;
    std::string name_;

public:
    MediaPlayerBridge bridge{MacOSPlayer::spotify,
        {.transport
            = std::make_unique<MprisTransport>(clock_, [](const std::string&, const std::vector<std::string>&) {}),
            .pollQueue = LinuxPlayers::makeQueue(MediaPlayerBridge::PollQueueLabel),
            .clock = clock_,
            .appNameOverride = [] { return std::nullopt; }}};
};

struct RealPlayerTests : testing::Test {
    void writeSongs() {
        first = bus->folder().write("first-ä%.wav",
            taggedTone({{"IART", "Ärzte"}, {"INAM", "First \"Song\""}, {"IPRD", "Album"}, {"IGNR", "Jazz"},
                {"ICRD", "1999"}}));
        second = bus->folder().write("second.wav", taggedTone({{"IART", "Übrige"}, {"INAM", "Second"}}));
    }

    /// What both players do alike, from the first song playing on.
    static void checkPlaying(RealPlayer& player) {
        ASSERT_TRUE(player.comesToState([](const auto& state) { return state.title == "First \"Song\""; }));
        const auto state = player.bridge.keeper().state();
        EXPECT_EQ(state.artist, "Ärzte");
        EXPECT_EQ(state.album, "Album");
        EXPECT_EQ(state.genre, "Jazz");
        EXPECT_EQ(state.duration, 60);
        EXPECT_EQ(state.status, 1);
        EXPECT_EQ(state.trackChangeSerial, 1);
        EXPECT_TRUE(player.comesToState([](const auto& now) { return now.state == 1 && now.position >= 1; }));
        EXPECT_GT(player.bridge.keeper().state().progress, 0);
    }
    static void checkShuffle(RealPlayer& player) {
        player.tell("SetShuffle 0");
        EXPECT_TRUE(player.comesToShow("shuffle", "Off"));
        EXPECT_TRUE(player.comesToState([](const auto& state) { return state.shuffle == 0; }));
        player.tell("SetShuffle -1");
        EXPECT_TRUE(player.comesToShow("shuffle", "On"));
        EXPECT_TRUE(player.comesToState([](const auto& state) { return state.shuffle == 1; }));
        player.tell("SetShuffle -1");
        EXPECT_TRUE(player.comesToShow("shuffle", "Off"));
    }
    static void checkCommands(RealPlayer& player) {
        player.tell("Pause");
        EXPECT_TRUE(player.comesToShow("status", "Paused"));
        EXPECT_TRUE(player.comesToState([](const auto& state) { return state.state == 2; }));
        player.tell("PlayPause");
        EXPECT_TRUE(player.comesToShow("status", "Playing"));
        player.tell("SetPosition 50");
        EXPECT_TRUE(player.comesToState([](const auto& state) { return state.position >= 29; }));
        player.tell("SetPosition -25");
        EXPECT_TRUE(comesTrue([&] { return std::atof(player.shows("position").c_str()) < 25; }));
        player.tell("SetVolume 40");
        EXPECT_TRUE(player.comesToShow("volume", "0.400000"));
        EXPECT_TRUE(player.comesToState([](const auto& state) { return state.volume == 40; }));
        player.tell("SetVolume +10");
        EXPECT_TRUE(player.comesToShow("volume", "0.500000"));
        player.tell("SetRepeat 1");
        EXPECT_TRUE(player.comesToShow("loop", "Playlist"));
        EXPECT_TRUE(player.comesToState([](const auto& state) { return state.repeatMode == 1; }));
        player.tell("SetRepeat 0");
        EXPECT_TRUE(player.comesToShow("loop", "None"));
        player.tell("SetRating 3");
        const auto serial = player.bridge.keeper().state().trackChangeSerial;
        player.tell("Next");
        EXPECT_TRUE(player.comesToShow("metadata title", "Second"));
        EXPECT_TRUE(player.comesToState([&](const auto& state) { return state.title == "Second"; }));
        EXPECT_EQ(player.bridge.keeper().state().trackChangeSerial, serial + 1);
        player.tell("Previous");
        EXPECT_TRUE(player.comesToShow("metadata title", "First \"Song\""));
        player.tell("Stop");
        EXPECT_TRUE(player.comesToShow("status", "Stopped"));
        EXPECT_TRUE(player.comesToState(
            [](const auto& state) { return state.status == 1 && state.state == 0 && state.title.empty(); }));
    }

    std::optional<PlayerBus> bus;
    std::string first;
    std::string second;
};

TEST_F(RealPlayerTests, showsAndSteersMpv) {
    skipWithout({"dbus-daemon", "mpv", "playerctl"});
    const std::string plugin = "/etc/mpv/scripts/mpris.so";
    if (!std::filesystem::exists(plugin))
        OSTREL_SKIP_FOR_WANT_OF("the player's bus plugin");
    bus.emplace();
    writeSongs();
    const ChildProcess mpv({"mpv", "--no-config", "--script=" + plugin, "--no-video", "--ao=null", "--no-terminal",
        "--idle=yes", "--volume=100", first, second});
    RealPlayer player(*bus, "mpv");
    ASSERT_NO_FATAL_FAILURE(checkPlaying(player));
    EXPECT_EQ(player.bridge.keeper().state().filePath, first);
    EXPECT_EQ(player.bridge.keeper().state().year, 1999);

    mpv.signal(SIGSTOP);
    // That nobody waits for it on this thread, the tests of the bridge tell.
    EXPECT_TRUE(comesTrue([&] {
        player.bridge.pollIfNeeded();
        player.tell("SetVolume 90");
        return player.bridge.keeper().state().status == 0;
    })) << "a player that hangs looks closed";
    mpv.signal(SIGCONT);
    EXPECT_TRUE(player.comesToState([](const auto& state) { return state.status == 1; }));

    checkCommands(player);
    player.tell("ClosePlayer");
    EXPECT_TRUE(comesTrue([&] { return bus->playerctl("-l").empty(); }));
    EXPECT_TRUE(player.comesToState([](const auto& state) { return state == MediaPlayerState(); }));
}

TEST_F(RealPlayerTests, showsAndSteersCmus) {
    skipWithout({"dbus-daemon", "cmus", "cmus-remote", "script", "playerctl"});
    if (const auto missing = SoundServer::missingPart(SoundServer::Kind::PulseAudio))
        OSTREL_SKIP_FOR_WANT_OF(*missing);
    bus.emplace();
    writeSongs();
    SoundServer sound(SoundServer::Kind::PulseAudio);
    ASSERT_TRUE(sound.start());
    const auto& home = bus->folder();
    home.write(".config/cmus/rc",
        "set output_plugin=pulse\nset softvol=true\nset play_library=true\nset resume=false\nset shuffle=off\n");
    const auto socket = home.path() + "/socket";
    const ChildProcess cmus({"script", "-qc", "cmus --listen " + socket, "/dev/null"},
        {{"HOME", home.path()}, {"TERM", "xterm"}, {"XDG_CONFIG_HOME", home.path() + "/.config"}});
    RealPlayer player(*bus, "cmus");
    ASSERT_TRUE(comesTrue([&] { return bus->playerctl("-l") == "cmus"; }));
    EXPECT_TRUE(player.comesToState([](const auto& state) { return state.status == 1 && state.state == 0; }));
    const auto remote = [&](const std::vector<std::string>& words) {
        std::vector<std::string> command{"cmus-remote", "--server", socket};
        command.insert(command.end(), words.begin(), words.end());
        return ChildProcess(command).wait();
    };
    ASSERT_EQ(remote({"-C", "add -l " + first, "add -l " + second, "player-play " + first}), 0);
    ASSERT_TRUE(player.comesToShow("status", "Playing"));
    // From the file by itself to the same file in the library, where a next one follows.
    ASSERT_EQ(remote({"-n"}), 0);
    ASSERT_NO_FATAL_FAILURE(checkPlaying(player));
    checkShuffle(player); // the other one has no such state
    checkCommands(player);
}

} // namespace
} // namespace Ostrel
