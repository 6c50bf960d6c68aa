#include "OstrelEngine/Players/MediaPlayerBridge.h"
#include "OstrelEngine/Players/MediaPlayerBridges.h"
#include "OstrelPlatform/Mac/AppleScriptTransport.h"
#include "OstrelPlatform/ThreadSerialQueue.h"
#include "OstrelPlatform/VirtualSerialQueue.h"
#include "Support/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <string>
#include <vector>

namespace Ostrel {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

std::string playing(std::string_view identifier, int state = 1) {
    return R"({"title":"T","state":")" + std::to_string(state) + R"(","trackIdentifier":")" + std::string(identifier)
        + "\"}";
}

/// A bridge whose scripts run when the test says, with the answer that it says.
struct MediaPlayerBridgeTests : testing::Test {
    std::unique_ptr<SerialQueue> makeQueue() {
        auto made = std::make_unique<VirtualSerialQueue>(clock);
        queue = made.get();
        return made;
    }
    std::unique_ptr<PlayerTransport> makeTransport() {
        return std::make_unique<AppleScriptTransport>([this](const std::string& script) {
            scripts.push_back(script);
            return answer;
        });
    }
    void poll() {
        clock.uptime += 1;
        bridge->pollIfNeeded();
        queue->runDue();
    }
    MediaPlayerState stateAfter(std::optional<std::string> output) {
        answer = std::move(output);
        poll();
        return bridge->keeper().state();
    }

    FakeClock clock;
    VirtualSerialQueue* queue = nullptr;
    std::vector<std::string> scripts;
    std::optional<std::string> answer;
    std::vector<std::string> labels;
    std::vector<std::string> log;
    MediaPlayerBridges bridges{{.makeTransport = [this] { return makeTransport(); },
        .makeQueue =
            [this](std::string_view label) {
                labels.emplace_back(label);
                return makeQueue();
            },
        .clock = clock,
        .log = [this](std::string_view line) { log.emplace_back(line); }}};
    std::shared_ptr<MediaPlayerBridge> bridge = bridges.shared(MacOSPlayer::spotify);
};

TEST_F(MediaPlayerBridgeTests, pollsOnceAnInterval) {
    for (int i = 0; i < 10; ++i)
        bridge->pollIfNeeded();
    queue->runDue();
    clock.uptime = 0.139;
    bridge->pollIfNeeded();
    queue->runDue();
    EXPECT_EQ(scripts.size(), 1U);
    clock.uptime = 0.14;
    bridge->pollIfNeeded();
    clock.uptime = 5;
    bridge->pollIfNeeded();
    queue->runDue();
    EXPECT_EQ(scripts.size(), 2U) << "none begins while one is under way";
    bridge->pollIfNeeded();
    queue->runDue();
    EXPECT_EQ(scripts.size(), 3U) << "one that was refused does not count as the last";
}

TEST_F(MediaPlayerBridgeTests, sharesABridgeAndChoosesItsScript) {
    EXPECT_EQ(bridges.shared(MacOSPlayer::spotify), bridge);
    EXPECT_THAT(labels, ElementsAre("com.ostrel.mediaplayer"));
    poll();
    bridges.setAppNameOverride("Music");
    poll();
    bridges.setAppNameOverride("Spotify");
    poll();
    bridges.setAppNameOverride("My \"Player\"");
    poll();
    EXPECT_EQ(bridge->effectiveAppName(), "My \"Player\"");
    bridge->executeCommand("play", "");
    queue->runDue();
    bridges.setAppNameOverride("");
    EXPECT_EQ(bridge->effectiveAppName(), "Spotify");
    ASSERT_EQ(scripts.size(), 5U);
    EXPECT_THAT(scripts[0], HasSubstr("\ntell application \"Spotify\"\n    try\n"));
    EXPECT_THAT(scripts[1], HasSubstr("\ntell application \"Music\"\n    try\n"));
    EXPECT_EQ(scripts[2], scripts[0]);
    EXPECT_THAT(scripts[3], HasSubstr("\ntell application \"My \\\"Player\\\"\"\n    try\n"));
    EXPECT_EQ(scripts[4], "tell application \"My \\\"Player\\\"\" to play");
    bridges.resetAll();
    EXPECT_NE(bridges.shared(MacOSPlayer::spotify), bridge);
}

/// The lines that only one of the players has.
TEST_F(MediaPlayerBridgeTests, asksEachPlayerInItsWords) {
    bridges.setAppNameOverride("Music");
    poll();
    EXPECT_THAT(scripts[0], StartsWith("on replaceText(findText, replacementText, subjectText)\n"));
    for (const char* line : {"set trackDuration to duration of t as integer\n", "ostrel-nowplaying-music-cover.jpg\"\n",
             "set trackIdentifier to persistent ID of t as text\n        end try\n", "set eof of coverHandle to 0\n",
             "if song repeat is not off then set repeatVal to 1\n"})
        EXPECT_THAT(scripts[0], HasSubstr(line));
    bridges.setAppNameOverride("Spotify");
    poll();
    for (const char* line : {"set trackDuration to (duration of t) / 1000\n", "set trackVolume to 50\n",
             "set coverArtPath to artwork url of t as text\n", "set trackGenre to \"\"\n        set trackLyrics"})
        EXPECT_THAT(scripts[1], HasSubstr(line));
    EXPECT_THAT(scripts[1], testing::Not(HasSubstr("rating of t")));
    bridges.setAppNameOverride("Vox");
    poll();
    EXPECT_THAT(scripts[2], HasSubstr(R"(        try
            set trackIdentifier to persistent ID of t as text
        on error
            try
                set trackIdentifier to id of t as text
            end try
        end try
)"));
    EXPECT_THAT(scripts[2], HasSubstr("        if coverArtPath is \"\" then\n            try\n"));
}

TEST_F(MediaPlayerBridgeTests, tellsAClosedPlayerFromAStoppedOne) {
    const MediaPlayerState closed;
    MediaPlayerState stopped;
    stopped.status = 1;
    stopped.trackChangeSerial = 1;
    EXPECT_EQ(stateAfter(playing("a")).title, "T");
    EXPECT_EQ(stateAfter("\n STOPPED\r\n"), stopped);
    EXPECT_EQ(stateAfter(playing("a")).trackChangeSerial, 1) << "the same track after a stop is no new one";
    EXPECT_EQ(stateAfter("garbled"), closed);
    EXPECT_EQ(stateAfter(playing("b")).trackChangeSerial, 2) << "garbled text does not end the count";
    EXPECT_EQ(stateAfter(" NOT_RUNNING\n"), closed);
    EXPECT_EQ(stateAfter(playing("b")).trackChangeSerial, 1);
    EXPECT_EQ(stateAfter(std::nullopt), closed);
    EXPECT_EQ(stateAfter(playing("c")).trackChangeSerial, 1);
    EXPECT_EQ(stateAfter("a|~|b|~|c|~|||~|1|~|2|~|3|~|1|~|5|~|0|~|0").artist, "a");
}

TEST_F(MediaPlayerBridgeTests, countsTracksWhileTheyPlay) {
    const auto serial = [&](const std::string& output) { return stateAfter(output).trackChangeSerial; };
    EXPECT_EQ(serial(playing("a", 0)), 0);
    EXPECT_EQ(serial(playing("a", 2)), 1);
    EXPECT_EQ(serial(playing("a", 1)), 1);
    EXPECT_EQ(serial(playing("b", 0)), 1);
    EXPECT_EQ(serial(playing("b", 1)), 2);
    const auto unnamed = [](const char* field, const char* value) {
        return std::string(R"({"state":"1","artist":"x",")") + field + "\":\"" + value + "\"}";
    };
    int expected = 3;
    for (const char* field : {"artist", "album", "title", "duration", "trackNumber", "year"})
        EXPECT_EQ(serial(unnamed(field, "7")), expected++) << field;
    EXPECT_EQ(serial(unnamed("position", "8")), expected++);
    EXPECT_EQ(serial(unnamed("genre", "9")), expected - 1) << "the rest does not tell tracks apart";
}

TEST_F(MediaPlayerBridgeTests, changesItsRevisionWithTheState) {
    const auto before = bridge->keeper().revision();
    stateAfter("NOT_RUNNING");
    EXPECT_EQ(bridge->keeper().revision(), before);
    stateAfter(playing("a"));
    EXPECT_GT(bridge->keeper().revision(), before);
}

TEST_F(MediaPlayerBridgeTests, resolvesCommandsAgainstTheLatestState) {
    stateAfter(R"({"state":"1","position":"30","duration":"200","volume":"20","shuffle":"1"})");
    scripts.clear();
    for (const char* command : {"SetPosition +10", "SetVolume -5", "SetShuffle -1", "SetRating 9", "", "OpenPlayer"})
        bridge->executeCommand(command, "/p");
    EXPECT_TRUE(scripts.empty()) << "they run on the queue";
    queue->runDue();
    EXPECT_THAT(scripts,
        ElementsAre(HasSubstr("position to 50"), HasSubstr("volume to 15"), HasSubstr("shuffling to false"),
            HasSubstr("/usr/bin/open")));
}

TEST_F(MediaPlayerBridgeTests, knowsThePlayersOfSkins) {
    const auto player = [&](std::string_view name) { return macOSPlayerFrom(name, bridges.log()); };
    for (const char* name : {"iTunes", "AppleMusic", "MUSIC"})
        EXPECT_EQ(player(name), MacOSPlayer::appleMusic) << name;
    EXPECT_EQ(player("spotify"), MacOSPlayer::spotify);
    for (const char* name : {"", "Clock", "Spotify ", "foobar3000"})
        EXPECT_EQ(player(name), std::nullopt) << name;
    EXPECT_TRUE(log.empty());
    for (const char* name :
        {"winamp", "WMP", "WLM", "MediaMonkey", "foobar", "CAD", "AIMP", "MusicBee", "foobar2000", "VLCPlayer", "VLC"})
        EXPECT_EQ(player(name), MacOSPlayer::spotify) << name;
    ASSERT_EQ(log.size(), 11U);
    EXPECT_EQ(log[0], "[NowPlaying] Player \"winamp\" is not available on macOS — using Spotify instead.");
}

TEST_F(MediaPlayerBridgeTests, restsWhenNobodyAsks) {
    class RestingTransport final : public PlayerTransport {
    public:
        explicit RestingTransport(int& rests)
            : rests_(rests) { }
        Poll poll(const PlayerTarget&) override {
            return [] { return std::nullopt; };
        }
        Work perform(const PlayerTarget&, const PlayerCommand&) override { return nullptr; }
        void rest() override { ++rests_; }

    private:
        int& rests_;
    };
    int rests = 0;
    MediaPlayerBridge resting(MacOSPlayer::appleMusic,
        {.transport = std::make_unique<RestingTransport>(rests),
            .pollQueue = makeQueue(),
            .clock = clock,
            .appNameOverride = [] { return std::nullopt; }});
    const auto pass = [&](int seconds) {
        for (int i = 0; i < seconds; ++i) {
            clock.uptime += 1;
            queue->runDue();
        }
    };
    for (int i = 0; i < 12; ++i) {
        resting.pollIfNeeded();
        pass(1);
    }
    EXPECT_EQ(rests, 0);
    pass(10);
    EXPECT_EQ(rests, 1);
    EXPECT_EQ(queue->pendingCount(), 0U) << "then nothing wakes the queue";
    resting.executeCommand("play", "");
    pass(10);
    EXPECT_EQ(rests, 2);
}

/// A bridge may go while its player is being asked.
TEST(MediaPlayerBridgeThreadTests, waitsForThePollThatIsUnderWay) {
    FakeClock clock;
    std::promise<void> began;
    std::promise<void> mayEnd;
    auto bridge = std::make_unique<MediaPlayerBridge>(MacOSPlayer::spotify,
        MediaPlayerBridge::Environment{.transport = std::make_unique<AppleScriptTransport>([&](const std::string&) {
                                           began.set_value();
                                           mayEnd.get_future().wait();
                                           return std::optional<std::string>("STOPPED");
                                       }),
            .pollQueue = std::make_unique<ThreadSerialQueue>(),
            .clock = clock,
            .appNameOverride = [] { return std::nullopt; }});
    bridge->pollIfNeeded();
    began.get_future().wait();
    auto ended = std::async(std::launch::async, [&] { bridge.reset(); });
    EXPECT_EQ(ended.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
    mayEnd.set_value();
    ended.wait();
}

} // namespace
} // namespace Ostrel
