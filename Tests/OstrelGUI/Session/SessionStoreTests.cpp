#include "OstrelGUI/Session/OstrelSessionStore.h"

#include "OstrelGUI/Session/SessionCoding.h"
#include "OstrelGUI/Session/SessionReplay.h"
#include "OstrelPlatform/InMemoryUserDefaults.h"
#include "OstrelPlatform/Linux/Desktop/QSettingsUserDefaults.h"
#include "Support/PlayerBus.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <random>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Ostrel {
namespace {

std::shared_ptr<const SnapshotPicture> picture(const std::string& bytes) {
    return std::make_shared<const SnapshotPicture>(bytes);
}

std::shared_ptr<const WidgetRuntimeState> runtime(
    std::map<std::string, std::string> variables, std::map<std::string, bool> visibility = {}) {
    return std::make_shared<const WidgetRuntimeState>(WidgetRuntimeState{std::move(variables), std::move(visibility)});
}

OstrelSessionState someSession() {
    OstrelSessionState state;
    state.upsert({.path = "/Skins/P/a.ini",
        .origin = Point{-1.5, 1e9},
        .runtime = runtime({{"Color", "\"1,2\"\\\n\x01"}}, {{"BOX", false}}),
        .isRendered = true,
        .snapshotData = picture(std::string("\x89PNG\0\xff", 6))});
    state.upsert({.path = "/Skins/P/ü.ini"});
    return state;
}

constexpr const char* LegacyJSON = R"({"widgets":[{"path":"/a.ini","origin":{"x":1,"y":2}},{"path":"/b.ini"}]})";

OstrelSessionState legacySession() {
    OstrelSessionState state;
    state.upsert({.path = "/a.ini", .origin = Point{1, 2}, .isRendered = true});
    state.upsert({.path = "/b.ini", .isRendered = true});
    return state;
}

class SessionStoreTest : public testing::Test {
protected:
    SessionStoreTest() { std::filesystem::create_directory(settings); }
    ~SessionStoreTest() override { chmod(settings.c_str(), 0700); }

    /// As a start after a kill would find it: the folder is copied, since a load goes on with what it finds.
    OstrelSessionState reloaded() const {
        TemporaryFolder copy;
        std::filesystem::copy(settings, copy.path() + "/settings", std::filesystem::copy_options::recursive);
        QSettingsUserDefaults defaults(copy.path() + "/settings");
        return OstrelSessionStore(defaults).load();
    }
    std::string base() const { return QSettingsUserDefaults(settings).data(OstrelSessionStore::Key).value_or("none"); }
    static std::string name(int journal) {
        return std::string(OstrelSessionStore::Key) + ".journal." + std::to_string(journal);
    }
    static std::vector<std::string> journals(const std::string& folder) {
        std::vector<std::string> result;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (entry.path().string().find(".journal.") != std::string::npos)
                result.push_back(entry.path().string());
        return result;
    }
    std::size_t journalSize() const {
        std::size_t size = 0;
        // The background may take one away meanwhile.
        std::error_code gone;
        for (const auto& path : journals(settings))
            if (const auto part = std::filesystem::file_size(path, gone); !gone)
                size += part;
        return size;
    }
    std::string write(const std::string& name, std::string_view bytes) const {
        return folder.write("settings/" + name, bytes);
    }

    TemporaryFolder folder;
    std::string settings = folder.path() + "/settings";
};

TEST_F(SessionStoreTest, givesBackWhatWasSaved) {
    {
        QSettingsUserDefaults defaults(settings);
        OstrelSessionStore store(defaults);
        EXPECT_EQ(store.load(), OstrelSessionState());
        store.save(someSession());
        EXPECT_EQ(reloaded(), someSession());
    }
    EXPECT_EQ(reloaded(), someSession());
    EXPECT_EQ(base(),
        "{\"widgets\":[{\"path\":\"/Skins/P/a.ini\",\"origin\":{\"x\":-1.5,\"y\":1000000000.0},"
        "\"runtime\":{\"variables\":{\"Color\":\"\\\"1,2\\\"\\\\\\n\\u0001\"},\"meterVisibility\":{\"BOX\":false}},"
        "\"isRendered\":true,\"snapshotData\":\"iVBORwD/\"},"
        "{\"path\":\"/Skins/P/ü.ini\",\"isRendered\":false}]}");
}

TEST_F(SessionStoreTest, takesOverTheOlderFormAndLeavesIt) {
    InMemoryUserDefaults defaults;
    defaults.setData(OstrelSessionStore::LegacyKey, LegacyJSON);
    OstrelSessionStore store(defaults);
    EXPECT_EQ(store.load(), legacySession());
    EXPECT_EQ(defaults.data(OstrelSessionStore::Key), std::nullopt) << "not before the first change";
    auto changed = legacySession();
    changed.widgets[0].isRendered = false;
    store.save(changed);
    EXPECT_EQ(defaults.data(OstrelSessionStore::LegacyKey), LegacyJSON);
    EXPECT_EQ(OstrelSessionStore(defaults).load(), changed);
}

TEST_F(SessionStoreTest, decodesWhatIsCompleteAndRejectsTheRest) {
    const auto widget = [](const std::string& members) { return "{\"widgets\":[{\"path\":\"/a\"" + members + "}]}"; };
    for (const char* good : {"", ",\"isRendered\":null,\"origin\":null,\"runtime\":null,\"snapshotData\":null",
             ",\"unknown\":{\"deep\":[1,2]}", ",\"snapshotData\":\"no base64!\""}) {
        const auto decoded = decodeSession(widget(good));
        ASSERT_TRUE(decoded) << good;
        EXPECT_EQ(decoded->widgets, (std::vector<OstrelWidgetState>{{.path = "/a"}})) << good;
    }
    std::string deep(100000, '[');
    for (const auto& bad : {widget(",\"isRendered\":1"), widget(",\"origin\":{\"x\":1}"), widget(",\"origin\":[1,2]"),
             widget(",\"runtime\":{\"variables\":{}}"), widget(",\"snapshotData\":5"), std::string("{}"),
             std::string("[]"), std::string("{\"widgets\":{}}"), std::string("{\"widgets\":[{\"isRendered\":true}]}"),
             std::string("{\"widgets\":[\"/a\"]}"), std::string(), std::string("\xff\xfe"), deep,
             widget("").substr(0, 20)})
        EXPECT_EQ(decodeSession(bad), std::nullopt) << bad.substr(0, 80);
    const auto twice = decodeSession(R"({"widgets":[{"path":"/a"},{"path":"/b"},{"path":"/a","isRendered":true}]})");
    EXPECT_EQ(twice->widgets, (std::vector<OstrelWidgetState>{{.path = "/a"}, {.path = "/b"}}));
}

TEST_F(SessionStoreTest, movesAsideWhatItCannotRead) {
    write("ostrel.sessionState.v1.json", LegacyJSON);
    for (const char* content : {"{\"version\":3,\"sheets\":[]}", "garbage"}) {
        write("ostrel.sessionState.v2.json", content);
        write(name(4), "left over");
        QSettingsUserDefaults defaults(settings);
        OstrelSessionStore store(defaults);
        EXPECT_EQ(store.load(), legacySession());
        store.save(someSession());
        EXPECT_EQ(reloaded(), someSession());
    }
    const auto contents = [this](const char* file) {
        std::ifstream stream(settings + "/" + file);
        return std::string(std::istreambuf_iterator<char>(stream), {});
    };
    EXPECT_EQ(contents("ostrel.sessionState.v2.json.bak"), "{\"version\":3,\"sheets\":[]}");
    EXPECT_EQ(contents("ostrel.sessionState.v2.json.bak2"), "garbage");
    EXPECT_EQ(contents("ostrel.sessionState.v2.journal.4.bak"), "left over");
}

TEST_F(SessionStoreTest, readsPicturesHoweverTheyAreWritten) {
    const auto pictureOf = [](const std::string& member) {
        const auto decoded = decodeSession("{\"widgets\":[{\"path\":\"/a\"," + member + "}]}");
        if (!decoded)
            return std::string("undecodable");
        const auto& data = decoded->widgets[0].snapshotData;
        return data ? *data->bytes() : std::string("none");
    };
    const std::pair<const char*, std::string> rows[] = {
        {R"("snapshotData":"AP//eHk=")", std::string("\0\xff\xffxy", 5)},
        {R"("snapshotData" : "QUJD")", "ABC"},
        {R"("snapshotData":"AP\/\/eA==")", std::string("\0\xff\xffx", 4)}, // slashes may be escaped
        {R"("snapshotData":"")", "none"},
        {R"("snapshotData":"QUJD","x":"\"snapshotData\":\"QQ==\"")", "ABC"},
        {R"("x":"snapshotData","y":"QUJD")", "none"},
        {R"("snapshotData":null,"y":"QUJD")", "none"},
        {R"("snapshotData":"QUJ")", "none"},
        {R"("snapshotData":"QU=D")", "none"},
        {R"("snapshotData":"====")", "none"},
        {R"("snapshotData":"@7")", "none"},
        {R"("snapshotData":"\u00407")", "none"},
        {R"("snapshotData":["QUJD"])", "undecodable"},
        {R"("snapshotData":"QUJD)", "undecodable"},
        {R"("snapshotData":"QUJD\")", "undecodable"},
    };
    for (const auto& [member, expected] : rows)
        EXPECT_EQ(pictureOf(member), expected) << member;
    for (std::size_t size = 1; size < 70; ++size) {
        OstrelSessionState state;
        state.upsert({.path = "/a", .snapshotData = picture(std::string(size, static_cast<char>(size * 37)))});
        EXPECT_EQ(decodeSession(encodeSession(state)), state) << size;
    }
}

TEST_F(SessionStoreTest, leavesPicturesInTheirFileWhateverBecomesOfIt) {
    const auto file = write("ostrel.sessionState.v2.json", encodeSession(someSession()));
    QSettingsUserDefaults defaults(settings);
    OstrelSessionStore store(defaults);
    auto state = store.load();
    const auto& stored = *state.widgets[0].snapshotData;
    std::filesystem::remove(file);
    const auto bytes = stored.bytes();
    EXPECT_EQ(*bytes, *someSession().widgets[0].snapshotData->bytes());
    EXPECT_EQ(stored.bytes(), bytes) << "one picture is one object while anyone holds it";
    EXPECT_EQ(encodeSession(state), encodeSession(someSession()));
}

TEST_F(SessionStoreTest, dropsAPictureThatSomebodyWroteOver) {
    auto text = encodeSession(someSession());
    const auto file = write("ostrel.sessionState.v2.json", text);
    QSettingsUserDefaults defaults(settings);
    OstrelSessionStore store(defaults);
    auto state = store.load();
    text.replace(text.find("iVBOR"), 5, "\"]}}\"");
    std::ofstream(file) << text;
    EXPECT_EQ(state.widgets[0].snapshotData->bytes(), nullptr);
    auto expected = someSession();
    expected.widgets[0].snapshotData = nullptr;
    EXPECT_EQ(decodeSession(encodeSession(state)), expected);
    std::filesystem::resize_file(file, 10);
    EXPECT_EQ(state.widgets[0].snapshotData->bytes(), nullptr);
    EXPECT_EQ(decodeSession(encodeSession(state)), expected);
}

/// Random changes, as a session has them.
class Changes {
public:
    explicit Changes(unsigned seed)
        : random_(seed) { }

    void apply(OstrelSessionState& state) {
        const auto kind = draw(12);
        const auto path = "/Skins/Pack/" + std::to_string(draw(6)) + ".ini";
        if (kind == 0)
            return state.remove(path);
        const auto known = state.index(path);
        OstrelWidgetState widget = known ? state.widgets[*known] : OstrelWidgetState{.path = path};
        if (kind <= 4)
            widget.origin = Point{draw(4000) / 8.0, -1.0 * draw(1000)};
        else if (kind <= 6)
            widget.isRendered = !widget.isRendered;
        else if (kind == 7)
            widget.snapshotData
                = picture(std::string(static_cast<std::size_t>(1 + draw(3000)), static_cast<char>(draw(256))));
        else
            widget.runtime = changedRuntime(widget.runtime.get(), kind == 11);
        state.upsert(std::move(widget));
    }

private:
    int draw(int bound) { return static_cast<int>(random_() % static_cast<unsigned>(bound)); }

    std::shared_ptr<const WidgetRuntimeState> changedRuntime(const WidgetRuntimeState* before, bool isAnew) {
        WidgetRuntimeState state = before && !isAnew ? *before : WidgetRuntimeState();
        state.variables["v" + std::to_string(draw(5))] = std::to_string(draw(50));
        state.meterVisibility["M" + std::to_string(draw(3))] = draw(2) == 1;
        return std::make_shared<const WidgetRuntimeState>(std::move(state));
    }

    std::mt19937 random_;
};

TEST_F(SessionStoreTest, changesReplayedGiveTheSameSession) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        Changes changes(seed);
        OstrelSessionState state;
        SessionReplay replay(state);
        for (int i = 0; i < 200; ++i) {
            const auto before = state;
            // Several at once too.
            for (int n = 0; n <= i % 3; ++n)
                changes.apply(state);
            const auto change = encodeChange(before, state);
            EXPECT_EQ(change.has_value(), before != state);
            if (change) {
                EXPECT_TRUE(replay.apply(*change)) << *change;
            }
        }
        EXPECT_EQ(replay.take(), state) << seed;
    }
}

TEST_F(SessionStoreTest, writesLittleForAMoveAndNothingForNoChange) {
    QSettingsUserDefaults defaults(settings);
    OstrelSessionStore store(defaults);
    auto state = someSession();
    state.widgets[0].snapshotData = picture(std::string(20000, 'x'));
    store.save(state);
    EXPECT_EQ(journalSize(), 0u);
    state.widgets[0].origin = Point{5, 6};
    store.save(state);
    const auto size = journalSize();
    EXPECT_LT(size, 120u);
    state.widgets[0].snapshotData = picture(std::string(20000, 'x'));
    store.save(state);
    EXPECT_EQ(journalSize(), size) << "the same picture at another place";
    EXPECT_EQ(reloaded(), state);
}

TEST_F(SessionStoreTest, foldsTheJournalWhenItGrowsAndAtTheEnd) {
    OstrelSessionState state = someSession();
    {
        QSettingsUserDefaults defaults(settings);
        OstrelSessionStore store(defaults);
        store.save(state);
        for (int i = 0; i < 200; ++i) {
            state.widgets[0].snapshotData = picture(std::string(30000, static_cast<char>('a' + i % 26)));
            store.save(state);
        }
        // In the background, however long the machine takes for it.
        EXPECT_TRUE(comesTrue([&] { return journalSize() < (4u << 20); })) << journalSize();
    }
    EXPECT_EQ(reloaded(), state);
    EXPECT_EQ(journalSize(), 0u);
    EXPECT_EQ(base(), encodeSession(state));
}

TEST_F(SessionStoreTest, ignoresATornRecordAndWhatFollowsIt) {
    OstrelSessionState first = someSession();
    OstrelSessionState second = first;
    second.widgets[1].isRendered = true;
    OstrelSessionState third = second;
    third.widgets[1].origin = Point{1, 1};
    TemporaryFolder killed;
    {
        QSettingsUserDefaults defaults(settings);
        OstrelSessionStore store(defaults);
        for (const auto& state : {first, second, third})
            store.save(state);
        // Before its end, which folds.
        std::filesystem::copy(settings, killed.path(), std::filesystem::copy_options::recursive);
    }
    ASSERT_EQ(journals(killed.path()).size(), 1u);
    const auto journal = journals(killed.path())[0];
    std::ifstream stream(journal);
    const std::string whole(std::istreambuf_iterator<char>(stream), {});
    const auto lineEnd = whole.find('\n') + 1;
    ASSERT_LT(lineEnd, whole.size());
    // Every seventh length, and those around the ends of the two lines.
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const bool isNearEnd = length + 2 > whole.size() || (length + 2 > lineEnd && length < lineEnd + 2);
        if (length % 7 != 0 && !isNearEnd)
            continue;
        TemporaryFolder copy;
        std::filesystem::copy(killed.path(), copy.path(), std::filesystem::copy_options::recursive);
        std::filesystem::resize_file(journals(copy.path())[0], length);
        QSettingsUserDefaults defaults(copy.path());
        {
            OstrelSessionStore store(defaults);
            EXPECT_EQ(store.load(), length < lineEnd ? first : length < whole.size() ? second : third) << length;
            // And goes on behind it.
            store.save(first);
        }
        EXPECT_EQ(OstrelSessionStore(defaults).load(), first) << length;
    }
    auto flipped = whole;
    flipped[lineEnd + 30] ^= 1;
    std::ofstream(journal) << flipped;
    QSettingsUserDefaults defaults(killed.path());
    EXPECT_EQ(OstrelSessionStore(defaults).load(), second);
}

/// Each step changes the session in one way that tells its number.
OstrelSessionState stateAfter(OstrelSessionState state, int step) {
    const auto path = "/Skins/Pack/" + std::to_string(step % 7) + ".ini";
    if (step % 11 == 10)
        state.remove(path);
    else if (step % 5 == 4)
        state.upsert({.path = path, .snapshotData = picture(std::string(60000, static_cast<char>('a' + step % 26)))});
    else
        state.upsert({.path = path, .isRendered = true});
    state.upsert({.path = "/step", .origin = Point{static_cast<double>(step), 0}});
    return state;
}

/// Saves steps until it is killed, and tells each that is safe.
[[noreturn]] void writeUntilKilled(const std::string& settings, int pipe, int firstStep) {
    QSettingsUserDefaults defaults(settings);
    OstrelSessionStore store(defaults);
    auto state = store.load();
    for (int step = firstStep;; ++step) {
        state = stateAfter(std::move(state), step);
        store.save(state);
        if (write(pipe, &step, sizeof step) != sizeof step)
            _exit(1);
    }
}

TEST_F(SessionStoreTest, isWholeAfterAKillAtAnyMoment) {
    std::mt19937 random(7);
    OstrelSessionState expected;
    int step = 0;
    int folds = 0;
    for (int round = 0; round < 24; ++round) {
        const auto baseBefore = base();
        int pipes[2];
        ASSERT_EQ(pipe(pipes), 0);
        const pid_t child = fork();
        if (child == 0)
            writeUntilKilled(settings, pipes[1], step + 1);
        close(pipes[1]);
        int saved = step;
        // Half of them at any moment of a start, the others while it works.
        const bool isWorking = round % 2 == 0 || read(pipes[0], &saved, sizeof saved) == sizeof saved;
        EXPECT_TRUE(isWorking);
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 80000));
        kill(child, SIGKILL);
        while (read(pipes[0], &saved, sizeof saved) == sizeof saved) { }
        waitpid(child, nullptr, 0);
        close(pipes[0]);

        for (; step < saved; ++step)
            expected = stateAfter(std::move(expected), step + 1);
        const auto found = reloaded();
        // The save that was under way may have come through.
        const auto next = stateAfter(expected, step + 1);
        ASSERT_TRUE(found == expected || found == next) << "round " << round << " after step " << step;
        if (found == next) {
            expected = next;
            ++step;
        }
        folds += base() != baseBefore;
    }
    EXPECT_GT(step, 100);
    EXPECT_GT(folds, 10) << "the kills are to meet folds too";
}

TEST_F(SessionStoreTest, keepsWorkingWhereNothingCanBeStored) {
    // A file in the place of the folder stops root as well.
    std::filesystem::remove_all(settings);
    folder.write("settings", "");
    {
        QSettingsUserDefaults defaults(settings);
        OstrelSessionStore store(defaults);
        EXPECT_EQ(store.load(), OstrelSessionState());
        for (int i = 0; i < 500; ++i)
            store.save(stateAfter(someSession(), i));
        // The disk is back.
        std::filesystem::remove(settings);
        store.save(stateAfter(someSession(), 500));
        EXPECT_EQ(reloaded(), stateAfter(someSession(), 500)) << "not with the next change";
        std::filesystem::remove_all(settings);
        folder.write("settings", "");
        store.save(stateAfter(someSession(), 501));
        std::filesystem::remove(settings);
    }
    EXPECT_EQ(reloaded(), stateAfter(someSession(), 501)) << "not at the end either";
}

TEST_F(SessionStoreTest, savesAllAnewWhenItsFilesAreTakenAway) {
    QSettingsUserDefaults defaults(settings);
    OstrelSessionStore store(defaults);
    auto state = someSession();
    store.save(state);
    // A folder in the place of the journal's file.
    for (int number = 1; number < 9; ++number)
        std::filesystem::create_directory(settings + "/" + name(number));
    state.widgets[1].isRendered = true;
    store.save(state);
    EXPECT_EQ(reloaded(), state);
    for (int number = 1; number < 9; ++number)
        std::filesystem::remove(settings + "/" + name(number));
    state.widgets[1].origin = Point{3, 4};
    store.save(state);
    EXPECT_EQ(reloaded(), state);
    std::filesystem::remove_all(settings);
    state.widgets[1].origin = Point{5, 6};
    store.save(state);
    EXPECT_EQ(reloaded(), state);
}

} // namespace
} // namespace Ostrel
