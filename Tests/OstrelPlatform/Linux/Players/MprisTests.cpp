#include "OstrelPlatform/Linux/Players/MprisTransport.h"
#include "OstrelPlatform/VirtualTime.h"
#include "Support/MissingTool.h"
#include "Support/PlayerBus.h"
#include "Support/ScriptedPlayer.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>

namespace Ostrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using JSON = nlohmann::ordered_json;
using Dictionary = ScriptedPlayer::Dictionary;
using Texts = std::vector<std::string>;
using ObjectPath = ScriptedPlayer::ObjectPath;
using Kind = PlayerCommand::Kind;

Dictionary playing(const std::string& identity, const std::string& status = "Playing") {
    return {{"Identity", identity}, {"PlaybackStatus", status}, {"Position", std::int64_t{1'000'000}}};
}

struct MprisTests : testing::Test {
    void SetUp() override {
        if (!hasProgram("dbus-daemon"))
            OSTREL_SKIP_FOR_WANT_OF("dbus-daemon");
        bus.emplace();
    }
    std::string poll(const PlayerTarget& target = {"Spotify", false}) {
        return transport.poll(target)().value_or("nothing");
    }
    /// Empty when the answer is none with fields.
    JSON state(const PlayerTarget& target = {"Spotify", false}) {
        auto answer = JSON::parse(poll(target), nullptr, false);
        return answer.is_object() ? answer : JSON::object();
    }
    std::string title(const PlayerTarget& target = {"Spotify", false}) { return state(target).value("title", "-"); }
    void tell(const PlayerCommand& command, const PlayerTarget& target = {"Spotify", false}) {
        transport.perform(target, command)();
    }
    /// Until the position that came with the rest of a player's properties is not that of now any more.
    void letPositionAge() { time.advance(0.06); }
    /// Its calls but those that only look, once there are so many.
    static Texts orders(ScriptedPlayer& player, std::size_t count) {
        Texts result;
        comesTrue([&] {
            for (auto& call : player.takeCalls()) {
                if (!call.starts_with("Get"))
                    result.push_back(call);
            }
            return result.size() >= count;
        });
        return result;
    }

    std::optional<PlayerBus> bus;
    Texts launched;
    VirtualTime time;
    /// It waits longer than any machine takes for an answer that comes.
    MprisTransport transport{time,
        [this](const std::string& program, const Texts& arguments) {
            launched.push_back(program);
            launched.insert(launched.end(), arguments.begin(), arguments.end());
        },
        std::chrono::seconds(30)};
};

TEST_F(MprisTests, answersAsAPlayerThatIsPolledElsewhere) {
    EXPECT_EQ(poll(), "NOT_RUNNING");
    ScriptedPlayer player("tune",
        {{"Identity", "Tune"}, {"PlaybackStatus", "Paused"}, {"Volume", 0.55}, {"Shuffle", true},
            {"LoopStatus", "Track"}, {"Position", std::int64_t{61'600'000}}},
        {{"mpris:trackid", ObjectPath{"/track/7"}}, {"xesam:artist", Texts{"A \"quoted\"", "", "B\n\u202eC"}},
            {"xesam:title", "T"}, {"xesam:album", "Al"}, {"xesam:genre", Texts{"G", "H"}}, {"xesam:asText", "la"},
            {"mpris:length", std::int64_t{200'400'000}}, {"mpris:artUrl", "file:///home/my%20cover%25.png"},
            {"xesam:url", "file:///m/%C3%A4.ogg"}, {"xesam:trackNumber", std::int32_t{7}},
            {"xesam:contentCreated", "1999-05-01T00:00:00Z"}, {"xesam:userRating", 0.8}});
    EXPECT_TRUE(comesTrue([&] { return poll() != "NOT_RUNNING"; }));
    EXPECT_EQ(poll(),
        JSON({{"artist", "A \"quoted\", B\n\u202eC"}, {"title", "T"}, {"album", "Al"}, {"genre", "G, H"},
                 {"lyrics", "la"}, {"duration", "200"}, {"position", "62"}, {"progress", "31"}, {"state", "2"},
                 {"volume", "55"}, {"shuffle", "1"}, {"repeatMode", "1"}, {"rating", "4"},
                 {"coverArtPath", "/home/my cover%.png"}, {"filePath", "/m/ä.ogg"}, {"trackNumber", "7"},
                 {"year", "1999"}, {"trackIdentifier", "file:///m/%C3%A4.ogg"}})
            .dump());
    player.setMetadata({{"mpris:trackid", ObjectPath{"/none"}}});
    player.signalMetadata();
    EXPECT_TRUE(comesTrue([&] { return poll() == "STOPPED"; })) << "a name without a track is none";
    player.setMetadata({});
    player.signalMetadata();
    EXPECT_TRUE(comesTrue([&] { return poll() != "STOPPED"; })) << "it may tell nothing of its tracks";
    player.setProperties(playing("Tune", "Stopped"));
    player.signal({{"PlaybackStatus", "Stopped"}});
    EXPECT_TRUE(comesTrue([&] { return poll() == "STOPPED"; }));
}

TEST_F(MprisTests, readsMetadataOfOtherTypes) {
    constexpr auto Huge = std::numeric_limits<std::uint64_t>::max();
    const struct {
        Dictionary metadata;
        const char* field;
        std::string value;
    } rows[] = {
        {{{"xesam:artist", "one text"}}, "artist", "one text"},
        {{{"xesam:albumArtist", Texts{"album's"}}}, "artist", "album's"},
        {{{"xesam:title", Texts{"a", "b"}}}, "title", "a, b"},
        {{{"xesam:title", 5.5}}, "title", ""},
        {{{"xesam:title", ScriptedPlayer::Structure()}}, "title", ""},
        {{{"xesam:title", std::string(1 << 20, 't')}}, "title", std::string(64 * 1024, 't')},
        {{{"mpris:length", Huge}}, "duration", "9223372036855"},
        {{{"mpris:length", 2.5e6}}, "duration", "2"},
        {{{"mpris:length", "3000000"}}, "duration", "3"},
        {{{"mpris:length", std::int64_t{-5}}}, "duration", "0"},
        {{{"mpris:length", std::numeric_limits<double>::infinity()}}, "duration", "0"},
        {{{"mpris:length", std::nan("")}}, "duration", "0"},
        {{{"mpris:length", ObjectPath{"/x"}}}, "duration", "0"},
        {{{"xesam:trackNumber", std::uint32_t{4'000'000'000}}}, "trackNumber", "4000000000"},
        {{{"xesam:trackNumber", 1e300}}, "trackNumber", "9223372036854775807"},
        {{{"xesam:contentCreated", std::int32_t{2001}}}, "year", "2001"},
        {{{"xesam:contentCreated", "May 2001"}}, "year", "0"},
        {{{"xesam:contentCreated", "20"}}, "year", "20"},
        {{{"xesam:userRating", 7.0}}, "rating", "5"},
        {{{"xesam:userRating", -7.0}}, "rating", "0"},
        {{{"mpris:artUrl", "https://example.org/a%20b.png"}}, "coverArtPath", "https://example.org/a%20b.png"},
        {{{"mpris:artUrl", "data:image/png;base64,AAAA"}}, "coverArtPath", "data:image/png;base64,AAAA"},
        {{{"mpris:artUrl", "/plain/path.png"}}, "coverArtPath", "/plain/path.png"},
        {{{"mpris:artUrl", "file://elsewhere/a.png"}}, "coverArtPath", ""},
        {{{"mpris:artUrl", "javascript:alert(1)"}}, "coverArtPath", ""},
        {{{"xesam:url", "https://example.org/stream"}}, "filePath", ""},
        {{{"mpris:trackid", "no path"}, {"xesam:title", "t"}}, "trackIdentifier", "no path::::::t::"},
    };
    ScriptedPlayer player("odd", playing("Odd"));
    poll();
    for (const auto& row : rows) {
        player.setMetadata(row.metadata);
        player.signalMetadata();
        EXPECT_TRUE(comesTrue([&] { return state()[row.field] == row.value; }))
            << row.field << " is " << state()[row.field].dump().substr(0, 100) << ", not " << row.value.substr(0, 100);
    }
    player.setMetadata({});
    player.setProperties({{"PlaybackStatus", "Paused"}, {"Volume", "loud"}, {"Shuffle", 1.0}, {"LoopStatus", true},
        {"Position", Texts{"x"}}});
    player.signal({{"PlaybackStatus", "Paused"}});
    EXPECT_TRUE(comesTrue([&] { return state()["state"] == "2" && state()["shuffle"] == "1"; }));
    EXPECT_EQ(state()["volume"], "0");
    EXPECT_EQ(state()["position"], "0");
    EXPECT_EQ(state()["trackIdentifier"], "");
}

TEST_F(MprisTests, choosesThePlayer) {
    ScriptedPlayer first("alpha", playing("First", "Paused"), {{"xesam:title", "alpha"}});
    ScriptedPlayer second("beta.instance42", playing("Zweiter Spieler", "Paused"), {{"xesam:title", "beta"}});
    ScriptedPlayer third("gamma", playing("Third"), {{"xesam:title", "gamma"}});
    second.setProperties(
        {{"Identity", "Zweiter Spieler"}, {"DesktopEntry", "org.example.Beta"}, {"PlaybackStatus", "Paused"}});
    const struct {
        PlayerTarget target;
        const char* title;
    } rows[] = {{{"Spotify", false}, "gamma"}, {{"Spotify", true}, "-"}, {{"ALPHA", true}, "alpha"},
        {{"first", false}, "alpha"}, {{"zweiter SPIELER", true}, "beta"}, {{"Beta", true}, "beta"},
        {{"beta.instance42", true}, "beta"}, {{"org.example.beta", true}, "beta"},
        {{"org.mpris.MediaPlayer2.gamma", true}, "gamma"}, {{"", false}, "gamma"}, {{"alph", true}, "-"}};
    for (const auto& row : rows)
        EXPECT_EQ(title(row.target), row.title) << row.target.name;
    EXPECT_EQ(poll({"Spotify", true}), "NOT_RUNNING");

    third.signal({{"PlaybackStatus", "Paused"}});
    third.setProperties(playing("Third", "Paused"));
    EXPECT_TRUE(comesTrue([&] { return state()["state"] == "2"; }));
    EXPECT_EQ(title(), "gamma") << "pausing a stand-in does not lead to another";
    first.setProperties(playing("First"));
    first.signal({{"PlaybackStatus", "Playing"}});
    EXPECT_TRUE(comesTrue([&] { return title() == "alpha"; }));
    MprisTransport newcomer{time, [](const std::string&, const Texts&) {}};
    first.setProperties(playing("First", "Paused"));
    EXPECT_NE(newcomer.poll({"Spotify", false})()->find("alpha"), std::string::npos) << "the first by name";
    ScriptedPlayer named("spotify", playing("Spotify", "Stopped"));
    EXPECT_TRUE(comesTrue([&] { return poll() == "STOPPED"; })) << "the player itself has come";
}

TEST_F(MprisTests, asksForNoMoreThanItNeeds) {
    ScriptedPlayer player("tune", playing("Tune"), {{"xesam:title", "one"}});
    poll();
    EXPECT_THAT(player.takeCalls(), ElementsAre("GetAll", "GetAll")) << "all is read once";
    letPositionAge();
    for (int i = 0; i < 5; ++i)
        poll();
    EXPECT_THAT(player.takeCalls(),
        ElementsAre("Get Position", "Get Position", "Get Position", "Get Position", "Get Position"));
    player.setMetadata({{"xesam:title", "two"}});
    player.signalMetadata();
    EXPECT_TRUE(comesTrue([&] { return title() == "two"; }));
    player.setProperties(playing("Tune", "Paused"));
    player.signal({{"PlaybackStatus", "Paused"}});
    EXPECT_TRUE(comesTrue([&] { return state()["state"] == "2"; }));
    player.takeCalls();
    player.signalSeeked(9'000'000);
    EXPECT_TRUE(comesTrue([&] { return state()["position"] == "9"; }));
    EXPECT_THAT(player.takeCalls(), IsEmpty()) << "a paused player tells all by itself";
    // A player that signals nothing is read again now and then.
    player.setMetadata({{"xesam:title", "three"}});
    EXPECT_EQ(title(), "two");
    time.advance(2);
    EXPECT_TRUE(comesTrue([&] { return title() == "three"; }));
    transport.rest();
    EXPECT_EQ(title(), "three");
}

TEST_F(MprisTests, waitsForAHungPlayerOnlyOnce) {
    ScriptedPlayer hung("hung", playing("Hung"), {{"xesam:title", "hung"}});
    const PlayerTarget target{"hung", true};
    constexpr auto Timeout = std::chrono::seconds(3);
    MprisTransport impatient{time, [](const std::string&, const Texts&) {}, Timeout};
    const auto waits = [&](const PlayerTarget& asked, const std::string& expected) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(impatient.poll(asked)().value_or("nothing").substr(0, expected.size()), expected);
        return std::chrono::steady_clock::now() - start > Timeout / 2;
    };
    EXPECT_FALSE(waits(target, "{"));
    hung.setAnswering(false);
    letPositionAge();
    EXPECT_TRUE(waits(target, "nothing"));
    EXPECT_FALSE(waits(target, "nothing"));
    {
        const ScriptedPlayer other("other", playing("Other", "Paused"));
        EXPECT_TRUE(comesTrue([&] {
            return impatient.poll({"Spotify", false})().value_or("").starts_with("{");
        })) << "one that answers stands in for it";
    }
    hung.setAnswering(true);
    hung.signal({{"PlaybackStatus", "Paused"}});
    impatient.rest();
    EXPECT_FALSE(waits(target, "{"));

    hung.setAnswering(false);
    impatient.rest();
    EXPECT_TRUE(waits(target, "NOT_RUNNING")) << "it does not even introduce itself";
    EXPECT_FALSE(waits(target, "NOT_RUNNING"));
}

TEST_F(MprisTests, livesThroughPlayersThatVanishAndABusThatEnds) {
    auto player = std::make_unique<ScriptedPlayer>("tune", playing("Tune"), Dictionary{{"xesam:title", "one"}});
    EXPECT_EQ(title(), "one");
    player->setAnswering(false);
    player->takeCalls();
    letPositionAge();
    std::thread leaving([&] {
        comesTrue([&] { return !player->takeCalls().empty(); });
        player.reset();
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(poll(), "nothing") << "it goes while it is asked";
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
    leaving.join();
    EXPECT_TRUE(comesTrue([&] { return poll() == "NOT_RUNNING"; }));
    tell({.kind = Kind::Play});
    bus.reset();
    EXPECT_TRUE(comesTrue([&] { return poll() == "NOT_RUNNING"; }));
    bus.emplace();
    const ScriptedPlayer next("next", playing("Next"), {{"xesam:title", "two"}});
    EXPECT_TRUE(comesTrue([&] { return title() == "two"; }));
}

TEST_F(MprisTests, carriesOutEveryCommand) {
    ScriptedPlayer player("tune", playing("Tune"), {{"mpris:trackid", ObjectPath{"/track/7"}}});
    poll();
    player.takeCalls();
    const struct {
        PlayerCommand command;
        const char* call;
    } rows[] = {
        {{.kind = Kind::Play}, "Play"},
        {{.kind = Kind::Pause}, "Pause"},
        {{.kind = Kind::PlayPause}, "PlayPause"},
        {{.kind = Kind::Stop}, "Stop"},
        {{.kind = Kind::Next}, "Next"},
        {{.kind = Kind::Previous}, "Previous"},
        {{.kind = Kind::SetPosition, .seconds = 12.5}, "SetPosition /track/7 12500000.000000"},
        {{.kind = Kind::SetVolume, .value = 40}, "Set Volume=0.400000"},
        {{.kind = Kind::SetShuffle, .value = 1}, "Set Shuffle=true"},
        {{.kind = Kind::SetShuffle, .value = 0}, "Set Shuffle=false"},
        {{.kind = Kind::SetRepeat, .value = 1}, "Set LoopStatus=Playlist"},
        {{.kind = Kind::SetRepeat, .value = 0}, "Set LoopStatus=None"},
        {{.kind = Kind::OpenPlayer}, "Raise"},
        {{.kind = Kind::OpenPlayer, .path = "C:\\Program Files\\player.exe"}, "Raise"},
        {{.kind = Kind::ClosePlayer}, "Quit"},
        {{.kind = Kind::TogglePlayer}, "Quit"},
    };
    for (const auto& row : rows) {
        tell(row.command);
        EXPECT_THAT(orders(player, 1), ElementsAre(row.call));
    }
    tell({.kind = Kind::SetRating, .value = 3});
    tell({.kind = Kind::Next});
    EXPECT_THAT(orders(player, 1), ElementsAre("Next")) << "this player cannot be given a rating";
    player.setMetadata({});
    player.signal({{"Rating", 0.2}}, {"Metadata"});
    EXPECT_TRUE(comesTrue([&] { return state()["rating"] == "1" && state()["trackIdentifier"] == ""; }));
    tell({.kind = Kind::SetRating, .value = 3});
    tell({.kind = Kind::SetPosition, .seconds = 0.25});
    EXPECT_THAT(orders(player, 2), ElementsAre("Set Rating=0.600000", "Seek -750000.000000"));
}

TEST_F(MprisTests, startsAPlayerThatIsNotThere) {
    const auto& folder = bus->folder();
    const auto program = folder.write("program", "#!/bin/sh\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    folder.write("data/applications/org.example.tune.desktop",
        "[Desktop Entry]\nType=Application\nName=My Tune\nExec=\"" + program + "\" --new %U \"a b\\\\\\\\\" 100%%\n");
    folder.write("data/applications/gone.desktop", "[Desktop Entry]\nType=Application\nName=Gone\nExec=/no/such %f\n");
    setenv("XDG_DATA_HOME", (folder.path() + "/data").c_str(), 1);
    const auto launchedBy = [&](const PlayerCommand& command, const std::string& name) {
        launched.clear();
        tell(command, {name, true});
        return launched;
    };
    const auto expected = ElementsAre(program, "--new", "a b\\", "100%");
    EXPECT_THAT(launchedBy({.kind = Kind::OpenPlayer}, "my tune"), expected);
    EXPECT_THAT(launchedBy({.kind = Kind::TogglePlayer}, "org.example.Tune"), expected);
    EXPECT_THAT(launchedBy({.kind = Kind::OpenPlayer, .path = program}, "Nobody"), ElementsAre(program));
    EXPECT_THAT(
        launchedBy({.kind = Kind::OpenPlayer, .path = folder.path() + "/data/applications/org.example.tune.desktop"},
            "Nobody"),
        expected);
    EXPECT_THAT(launchedBy({.kind = Kind::OpenPlayer}, "Gone"), IsEmpty());
    EXPECT_THAT(launchedBy({.kind = Kind::OpenPlayer, .path = folder.path()}, "Nobody"), IsEmpty());
    EXPECT_THAT(launchedBy({.kind = Kind::Play}, "My Tune"), IsEmpty()) << "only opening starts a player";
    unsetenv("XDG_DATA_HOME");
}

} // namespace
} // namespace Ostrel
