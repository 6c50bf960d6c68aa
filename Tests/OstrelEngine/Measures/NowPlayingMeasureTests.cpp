#include "OstrelEngine/Measures/NowPlayingMeasure.h"

#include "OstrelEngine/Measures/MeasureTable.h"
#include "OstrelEngine/Players/MediaPlayerBridge.h"
#include "OstrelEngine/Players/MediaPlayerBridges.h"
#include "OstrelPlatform/Mac/AppleScriptTransport.h"
#include "OstrelPlatform/VirtualSerialQueue.h"
#include "Support/AllocationCounter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct NowPlayingMeasureTests : testing::Test {
    NowPlayingMeasureTests() { table->fake.platform.mediaPlayers = &bridges; }

    std::unique_ptr<SerialQueue> makeQueue() {
        auto made = std::make_unique<VirtualSerialQueue>(table->fake.clock);
        queues.push_back(made.get());
        return made;
    }
    BaseMeasure& add(std::string name, MeasureTable::Pairs options, std::string type = "NowPlaying") {
        return table->add(std::move(name), std::move(type), options);
    }
    /// The player answers a poll of the measures' bridge, and the measure shows it.
    void show(BaseMeasure& measure, const std::string& text) {
        answer = text;
        table->fake.clock.uptime += 1;
        measure.update();
        for (auto* queue : queues)
            queue->runDue();
        measure.update();
    }

    std::shared_ptr<MeasureTable> table = MeasureTable::create();
    std::vector<std::string>& actions = table->log;
    std::vector<VirtualSerialQueue*> queues;
    std::string answer = "NOT_RUNNING";
    std::vector<std::string> scripts;
    std::vector<std::string> log;
    MediaPlayerBridges bridges{{.makeTransport =
                                    [this] {
                                        return std::make_unique<AppleScriptTransport>(
                                            [this](const std::string& script) {
                                                scripts.push_back(script);
                                                return std::optional(answer);
                                            });
                                    },
        .makeQueue = [this](std::string_view) { return makeQueue(); },
        .clock = table->fake.clock,
        .log = [this](std::string_view line) { log.emplace_back(line); }}};
};

TEST_F(NowPlayingMeasureTests, showsTheTrackToTheActionOfItsChange) {
    auto& title = add("Title", {{"PlayerName", "Spotify"}, {"PlayerType", "Title"}, {"TrackChangeAction", "go"}});
    std::string seen;
    table->onAction = [&](std::string_view) {
        title.update();
        seen += title.value().stringValue + " ";
    };
    for (const auto* track : {"One", "Two"})
        show(title, std::string(R"({"title":")") + track + R"(","state":"1"})");
    EXPECT_EQ(seen, "One Two ") << "an update that the action asks for";
}

TEST_F(NowPlayingMeasureTests, yieldsEachFieldWithItsRange) {
    const struct {
        const char* type;
        MeasureValue empty;
        MeasureValue value;
    } rows[] = {
        {"none", {0, "", false, 0, 0}, {0, "", false, 0, 0}},
        {"ARTIST", {0, "", true, 0, 0}, {0, "A", true, 0, 0}},
        {"title", {0, "", true, 0, 0}, {0, "T", true, 0, 0}},
        {"Album", {0, "", true, 0, 0}, {0, "Al", true, 0, 0}},
        {"Genre", {0, "", true, 0, 0}, {0, "G", true, 0, 0}},
        {"Lyrics", {0, "", true, 0, 0}, {0, "L", true, 0, 0}},
        {"Cover", {0, "", true, 0, 0}, {0, "/c.png", true, 0, 0}},
        {"File", {0, "", true, 0, 0}, {0, "/f.ogg", true, 0, 0}},
        {"Duration", {0, "", false, 0, 0}, {3725.5, "1:02:05", false, 0, 3725.5}},
        {"Position", {0, "", false, 0, 0}, {185, "03:05", false, 0, 3725.5}},
        {"progress", {0, "", false, 0, 100}, {4.6, "5", false, 0, 100}},
        {"State", {0, "", false, 0, 2}, {2, "2", false, 0, 2}},
        {" status ", {0, "", false, 0, 1}, {1, "1", false, 0, 1}},
        {"", {0, "", false, 0, 1}, {1, "1", false, 0, 1}},
        {"Volume", {0, "", false, 0, 100}, {60.5, "60", false, 0, 100}},
        {"Shuffle", {0, "", false, 0, 1}, {1, "1", false, 0, 1}},
        {"Repeat", {0, "", false, 0, 1}, {1, "1", false, 0, 1}},
        {"Rating", {0, "", false, 0, 5}, {3, "3", false, 0, 5}},
        {"Number", {0, "", false, 0, 0}, {9, "9", false, 0, 0}},
        {"Year", {0, "", false, 0, 0}, {2020, "2020", false, 0, 0}},
    };
    for (const auto& row : rows) {
        auto& measure = add(row.type, {{"PlayerName", " spotify "}, {"PlayerType", row.type}});
        EXPECT_EQ(measure.value(), row.empty) << row.type;
        show(measure, R"({"artist":"A","title":"T","album":"Al","genre":"G","lyrics":"L","duration":3725.5,
            "position":"185","progress":4.6,"state":"2","volume":60.5,"shuffle":"1","repeatMode":"1","rating":"3",
            "coverArtPath":"/c.png","filePath":"/f.ogg","trackNumber":"9","year":"2020"})");
        EXPECT_EQ(measure.value(), row.value) << row.type << ": " << measure.value().stringValue;
    }
    EXPECT_THAT(log, IsEmpty());
    add("Odd", {{"PlayerType", " Mood "}});
    EXPECT_THAT(log, ElementsAre("[NowPlaying] Invalid PlayerType=\"Mood\" in section [Odd]."));
}

TEST_F(NowPlayingMeasureTests, writesTimes) {
    const struct {
        const char* seconds;
        const char* padded;
        const char* bare;
    } rows[] = {{"185.9", "03:05", "3:05"}, {"0", "00:00", "0:00"}, {"3599", "59:59", "59:59"},
        {"3725", "1:02:05", "1:02:05"}, {"36000", "10:00:00", "10:00:00"},
        {"1e300", "2562047788015215:30:07", "2562047788015215:30:07"}};
    auto& padded = add("Padded", {{"PlayerName", "Spotify"}, {"PlayerType", "Position"}, {"DisableLeadingZero", "0"}});
    auto& bare = add("Bare", {{"PlayerName", "Spotify"}, {"PlayerType", "Position"}, {"DisableLeadingZero", "1"}});
    for (const auto& row : rows) {
        show(padded, std::string(R"({"position":")") + row.seconds + "\"}");
        bare.update();
        EXPECT_EQ(padded.value().stringValue, row.padded);
        EXPECT_EQ(bare.value().stringValue, row.bare);
    }
}

TEST_F(NowPlayingMeasureTests, runsItsActionForEachTrack) {
    auto& owner = add("Owner", {{"PlayerName", "Spotify"}, {"TrackChangeAction", "[!Log x]"}});
    auto& child = add("Child", {{"PlayerName", "[Owner]"}, {"TrackChangeAction", "[!Log child]"}});
    child.resolveReferences();
    const auto play = [&](BaseMeasure& measure, const char* id) {
        show(measure, std::string(R"({"state":"1","trackIdentifier":")") + id + "\"}");
    };
    play(child, "a");
    EXPECT_THAT(actions, IsEmpty()) << "only the owner runs it";
    play(owner, "a");
    play(owner, "a");
    EXPECT_EQ(actions.size(), 1U);
    play(owner, "b");
    EXPECT_THAT(actions, ElementsAre("[!Log x]", "[!Log x]"));
    show(owner, "NOT_RUNNING");
    play(owner, "c");
    EXPECT_EQ(actions.size(), 3U) << "the count has begun anew at 1, and this measure has last seen 2";
    play(owner, "d");
    EXPECT_EQ(actions.size(), 4U);
    auto& second = add("Second", {{"PlayerName", "Spotify"}, {"TrackChangeAction", "[!Log y]"}});
    play(second, "d");
    EXPECT_EQ(actions.back(), "[!Log y]") << "as after a refresh";
}

TEST_F(NowPlayingMeasureTests, findsItsParent) {
    add("Spotify", {{"PlayerName", "iTunes"}});
    add("Parent", {{"PlayerName", "Spotify"}, {"PlayerPath", " '/opt/my player' "}});
    table->addNumber("Number", "1");
    const struct {
        const char* player;
        const char* script;
    } rows[] = {{"[parent]", "quoted form of \"/opt/my player\""}, {"[ Parent ]", "quoted form of \"/opt/my player\""},
        {"Parent", "quoted form of \"/opt/my player\""}, {"Spotify", "\"Spotify\" to activate"},
        {"[Spotify]", "\"Music\" to activate"}, {"[Number]", nullptr}, {"Number", nullptr}, {"Nobody", nullptr},
        {"[]", nullptr}, {"[", nullptr}, {"", nullptr}};
    for (const auto& row : rows) {
        auto& measure = add("Child", {{"PlayerName", row.player}});
        measure.resolveReferences();
        measure.update();
        EXPECT_EQ(measure.value().stringValue, row.script ? "0" : "") << row.player;
        EXPECT_TRUE(measure.executeCommand("OpenPlayer"));
        for (auto* queue : queues)
            queue->runDue();
        std::erase_if(scripts, [](const auto& script) { return script.starts_with("on "); });
        if (row.script)
            EXPECT_THAT(scripts, ElementsAre(testing::HasSubstr(row.script))) << row.player;
        else
            EXPECT_THAT(scripts, IsEmpty()) << row.player;
        scripts.clear();
    }
}

TEST_F(NowPlayingMeasureTests, servesThePluginsOfOtherPlayers) {
    const auto typeOf = [&](MeasureTable::Pairs options) { return add("M", options, "Plugin").value(); };
    const MeasureValue title{0, "", true, 0, 0};
    const MeasureValue status{0, "", false, 0, 1};
    EXPECT_EQ(typeOf({{"Plugin", "nowplaying.dll"}, {"PlayerType", "Title"}}), title);
    EXPECT_EQ(typeOf({{"Plugin", "WebNowPlaying"}, {"PlayerType", "Title"}}), title);
    EXPECT_EQ(typeOf({{"Plugin", "GPMDPPlugin"}, {"PlayerInfo", "Title"}}), title);
    EXPECT_EQ(typeOf({{"Plugin", "GPMDPPlugin"}, {"PlayerInfo", "Title"}, {"PlayerType", ""}}), status);
    EXPECT_EQ(typeOf({{"Plugin", "GPMDPPlugin"}, {"PlayerInfo", ""}}), status);
    EXPECT_EQ(typeOf({{"Plugin", "WebNowPlaying"}, {"PlayerInfo", "Title"}}), status);

    show(add("Web", {{"Plugin", "WebNowPlaying"}, {"PlayerName", ""}}, "Plugin"), "STOPPED");
    EXPECT_EQ(scripts.size(), 1U) << "they have a player without naming one";
    show(add("Bare", {{"Plugin", "NowPlaying"}, {"PlayerName", ""}}, "Plugin"), "STOPPED");
    EXPECT_EQ(scripts.size(), 1U);
}

TEST_F(NowPlayingMeasureTests, asksOnceForAllMeasuresAndAllocatesForNone) {
    std::vector<BaseMeasure*> measures;
    for (const char* type :
        {"Artist", "Title", "Album", "Lyrics", "Cover", "Position", "Progress", "State", "Volume", ""})
        measures.push_back(&add("M", {{"PlayerName", "Spotify"}, {"PlayerType", type}}));
    show(*measures[0], R"({"state":"1","title":")" + std::string(5000, 't') + "\"}");
    EXPECT_EQ(scripts.size(), 1U);
    const auto updateAll = [&] {
        for (auto* measure : measures)
            measure->update();
    };
    updateAll();
    EXPECT_EQ(measures[1]->value().stringValue.size(), 5000U);
    const auto before = allocationCount();
    updateAll();
    EXPECT_EQ(allocationCount(), before);
    EXPECT_EQ(scripts.size(), 1U);
}

} // namespace
} // namespace Ostrel
