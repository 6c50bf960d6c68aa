#include "OstrelGUI/Channel/WindowChannel.h"

#include "OstrelGUI/Channel/WindowClient.h"
#include "OstrelGUI/Channel/WindowServer.h"
#include "OstrelPlatform/VirtualTime.h"
#include "Support/EventLoop.h"

#include "FakeWidgetLibrary.h"

#include <QCoreApplication>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace Ostrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::pair<FileDescriptor, FileDescriptor> connectedSockets() {
    int ends[2] = {-1, -1};
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

std::string frame(std::string_view text, std::string_view blob = {}) {
    std::string bytes;
    for (const auto size : {text.size(), blob.size()})
        for (int i = 0; i < 4; ++i)
            bytes += static_cast<char>(size >> 8 * i & 0xff);
    return bytes.append(text).append(blob);
}

TEST(FrameReader, putsFramesTogetherHoweverTheyAreCut) {
    const auto stream = frame(R"({"n":1})") + frame(R"({"n":2})", "raw") + frame(R"({"n":"ä"})", std::string(300, 0));
    for (std::size_t step = 1; step <= stream.size(); step += step < 20 ? 1 : 97) {
        FrameReader reader;
        std::vector<std::string> got;
        for (std::size_t at = 0; at < stream.size(); at += step)
            ASSERT_TRUE(reader.read(std::string_view(stream).substr(at, step), [&](const auto& message, auto blob) {
                got.push_back(message.at("n").dump() + " " + std::to_string(blob.size()));
            }));
        EXPECT_THAT(got, ElementsAre("1 0", "2 3", "\"ä\" 300")) << "in steps of " << step;
    }
}

TEST(FrameReader, stopsAtTheFirstBreachOfTheRules) {
    const std::string tooLong = "\xff\xff\xff\x7f" + std::string(4, '\0');
    const std::string hugeBlob = frame("{}").substr(0, 4) + "\xff\xff\xff\xff";
    for (const auto& bytes : {tooLong, hugeBlob, frame("[1]"), frame("{"), frame(""), frame("\xff{}"),
             frame(std::string(100'000, '[')), std::string("GET / HTTP/1.1\r\n\r\n")}) {
        FrameReader reader;
        int count = 0;
        const auto handler = [&](const auto&, const auto&) { ++count; };
        EXPECT_FALSE(reader.read(frame(R"({"a":1})") + bytes + frame(R"({"b":1})"), handler)) << bytes.substr(0, 30);
        EXPECT_FALSE(reader.read(frame(R"({"c":1})"), handler));
        EXPECT_EQ(count, 1) << bytes.substr(0, 30);
    }
}

TEST(WindowChannel, keepsOrderAndContentWhenThePeerIsSlow) {
    auto [near, far] = connectedSockets();
    WindowChannel sender(std::move(near));
    const auto blob = std::make_shared<const std::string>(3'000'000, 'x');
    for (int i = 0; i < 10; ++i)
        sender.send({{"n", i}}, i % 2 ? blob : nullptr);
    EXPECT_GT(sender.queuedBytes(), 10'000'000u);
    int drained = 0;
    sender.onDrained = [&] { ++drained; };

    WindowChannel receiver(std::move(far));
    std::vector<std::size_t> got;
    receiver.onMessage = [&](const nlohmann::json& message, const std::string& bytes) {
        EXPECT_EQ(message.at("n"), got.size());
        got.push_back(bytes.size());
    };
    ASSERT_TRUE(runLoopUntil([&] { return got.size() == 10; }));
    for (std::size_t i = 0; i < got.size(); ++i)
        EXPECT_EQ(got[i], i % 2 ? blob->size() : 0);
    EXPECT_EQ(sender.queuedBytes(), 0u);
    EXPECT_EQ(drained, 1);
    EXPECT_EQ(blob.use_count(), 1) << "still held after it was sent";
}

TEST(WindowChannel, endsOnceByWhateverThePeerDoes) {
    const auto garbage = frame("nonsense");
    const auto cutOff = frame(R"({"n":1})", "raw").substr(0, 17);
    for (const auto& bytes : {std::string(), garbage, cutOff}) {
        auto [near, far] = connectedSockets();
        WindowChannel channel(std::move(near));
        int ends = 0;
        int messages = 0;
        channel.onEnd = [&] { ++ends; };
        channel.onMessage = [&](const auto&, const auto&) { ++messages; };
        ASSERT_EQ(::send(far.get(), bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
        if (bytes != garbage)
            far.reset();
        ASSERT_TRUE(runLoopUntil([&] { return ends > 0; }));
        channel.send({{"n", 1}});
        QCoreApplication::processEvents();
        EXPECT_EQ(ends, 1);
        EXPECT_EQ(messages, 0);
        EXPECT_FALSE(channel.isOpen());
    }
}

TEST(WindowChannel, givesUpOnAPeerThatTakesNothing) {
    auto [near, far] = connectedSockets();
    WindowChannel channel(std::move(near));
    bool hasEnded = false;
    channel.onEnd = [&] { hasEnded = true; };
    const auto blob = std::make_shared<const std::string>(MessageFrames::LongestBlob, 'x');
    for (std::size_t i = 0; i * blob->size() <= WindowChannel::LongestQueue; ++i)
        channel.send({{"n", i}}, blob);
    EXPECT_FALSE(hasEnded) << "from within a call of send";
    EXPECT_TRUE(runLoopUntil([&] { return hasEnded; }));
    EXPECT_EQ(channel.queuedBytes(), 0u);
    channel.send({{"n", 1}}, std::make_shared<const std::string>(MessageFrames::LongestBlob + 1, 'x'));
}

class WindowProcessesTest : public testing::Test {
protected:
    WindowProcessesTest() {
        library.items = {item("/a.ini"), item("/b.ini")};
        library.items[1].snapshotData = std::make_shared<const std::string>("picture of b");
        defaults.texts = {{"targetMediaPlayer", "Spotify"}, {"ostrel.sessionState.v2", "secret"}};
        defaults.switches = {{"reverseCommandScrollDirection", true}};
    }

    static WidgetLibraryItem item(const std::string& path) {
        return {path, "name of " + path, "pack", path, false, false, {}, {}};
    }

    void connect() {
        auto [near, far] = connectedSockets();
        server = std::make_unique<WindowServer>(
            std::make_unique<WindowChannel>(std::move(near)), library, defaults, residentTime);
        client = std::make_unique<WindowClient>(std::move(far), windowTime);
        client->library().onLibraryItemsChange = [this] { ++changes; };
    }

    template <typename Condition> bool comes(const Condition& condition) {
        return runLoopUntil([&] {
            residentTime.runQueued();
            windowTime.runFor(0.01);
            return condition();
        });
    }
    bool windowHas(const std::vector<WidgetLibraryItem>& items) {
        return comes([&] {
            const auto& got = client->library().libraryItems();
            return std::ranges::equal(got, items, [](const auto& a, const auto& b) {
                return a.path == b.path && a.displayName == b.displayName && a.packageName == b.packageName
                    && a.relativePath == b.relativePath && a.isRendered == b.isRendered && a.isRunning == b.isRunning
                    && !a.snapshotData == !b.snapshotData && (!a.snapshotData || *a.snapshotData == *b.snapshotData);
            });
        });
    }

    FakeWidgetLibrary library;
    FakeUserDefaults defaults;
    VirtualTime residentTime;
    VirtualTime windowTime;
    std::unique_ptr<WindowServer> server;
    std::unique_ptr<WindowClient> client;
    int changes = 0;
};

TEST_F(WindowProcessesTest, theWindowIsReadyWithSettingsAndListAndThenFollowsTheLibrary) {
    connect();
    std::string atReady;
    client->onReady = [&] {
        atReady = client->defaults().string("targetMediaPlayer").value_or("") + " "
            + std::to_string(client->library().libraryItems().size());
    };
    ASSERT_TRUE(windowHas(library.items));
    EXPECT_EQ(atReady, "Spotify 2");
    EXPECT_EQ(client->defaults().boolean("reverseCommandScrollDirection"), true);
    EXPECT_EQ(client->defaults().string("ostrel.sessionState.v2"), std::nullopt);
    ASSERT_TRUE(comes([&] { return changes > 0; }));

    const auto picture = client->library().libraryItems()[1].snapshotData;
    changes = 0;
    for (int i = 0; i < 50; ++i) {
        library.items[0].isRendered = i % 2 == 0;
        library.notify();
    }
    library.items[0].isRendered = true;
    library.items[1].isRunning = true;
    ASSERT_TRUE(windowHas(library.items));
    ASSERT_TRUE(comes([&] { return changes > 0; }));
    EXPECT_EQ(changes, 1) << "one look for many changes in one turn";
    EXPECT_EQ(client->library().libraryItems()[1].snapshotData, picture) << "sent again though it is the same";

    library.items.insert(library.items.begin(), item("/new.ini"));
    library.items[1].snapshotData = std::make_shared<const std::string>("picture of a");
    library.items[2].snapshotData = nullptr;
    library.notify();
    ASSERT_TRUE(windowHas(library.items));
    library.items.erase(library.items.begin() + 1);
    library.notify();
    ASSERT_TRUE(windowHas(library.items));
}

TEST_F(WindowProcessesTest, aLargeLibraryIsListedBeforeItsPicturesAndDoesNotPileUp) {
    library.items.clear();
    for (int i = 0; i < 400; ++i) {
        library.items.push_back(item("/" + std::to_string(i) + ".ini"));
        library.items.back().snapshotData = std::make_shared<const std::string>(40'000, static_cast<char>(i));
    }
    connect();
    std::size_t picturesAtReady = 0;
    client->onReady = [&] {
        const auto& items = client->library().libraryItems();
        EXPECT_EQ(items.size(), 400u);
        picturesAtReady = static_cast<std::size_t>(
            std::ranges::count_if(items, [](const auto& shown) { return shown.snapshotData != nullptr; }));
    };
    // A wish does not wait behind all the pictures.
    std::size_t picturesAtShow = 400;
    client->onShow = [&] {
        picturesAtShow = static_cast<std::size_t>(std::ranges::count_if(
            client->library().libraryItems(), [](const auto& shown) { return shown.snapshotData != nullptr; }));
    };
    server->show();
    ASSERT_TRUE(windowHas(library.items));
    EXPECT_EQ(picturesAtReady, 0u);
    EXPECT_LT(picturesAtShow, 40u);
}

TEST_F(WindowProcessesTest, requestsAndWishesGoThrough) {
    connect();
    std::vector<std::string> told;
    server->onSettingChange = [&](const std::string& key) { told.push_back("set " + key); };
    server->onVisibilityChange = [&] { told.push_back(server->isWindowVisible() ? "visible" : "hidden"); };
    auto& seen = client->library();
    const std::string paths[] = {"/x.ini", "/y z.ini"};
    seen.registerDiscovered(paths);
    seen.renderWidget("/a.ini");
    seen.launchWidget("/a.ini");
    seen.unrenderWidget("/\"\n\xff.ini");
    client->defaults().setString("targetMediaPlayer", "VLC");
    client->defaults().setBoolean("reverseCommandScrollDirection", false);
    client->defaults().setString("ostrel.sessionState.v2", "broken");
    client->defaults().setBoolean("targetMediaPlayer", true);
    client->setVisible(true);
    client->setVisible(false);
    library.failure = "disk full";
    std::vector<std::string> answers;
    const auto answer = [&](const std::optional<std::string>& failure) { answers.push_back(failure.value_or("done")); };
    seen.deletePackage(paths, answer);
    ASSERT_TRUE(comes([&] { return answers.size() == 1; }));
    library.failure.reset();
    seen.deletePackage({}, answer);
    ASSERT_TRUE(comes([&] { return answers.size() == 2; }));

    EXPECT_THAT(answers, ElementsAre("disk full", "done"));
    EXPECT_THAT(library.asked,
        ElementsAre("register /x.ini", "register /y z.ini", "render /a.ini", "launch /a.ini",
            "unrender /\"\n\ufffd.ini", "delete /x.ini", "delete /y z.ini"));
    EXPECT_THAT(told, ElementsAre("set targetMediaPlayer", "set reverseCommandScrollDirection", "visible", "hidden"));
    EXPECT_EQ(defaults.texts["targetMediaPlayer"], "VLC");
    EXPECT_EQ(defaults.texts["ostrel.sessionState.v2"], "secret");

    std::vector<std::string> wishes;
    client->onShow = [&] { wishes.push_back("show"); };
    client->onOpen = [&](const auto& opened) { wishes.push_back("open " + opened.at(1)); };
    client->onScan = [&](const auto& scanned) { wishes.push_back("scan " + scanned.at(0)); };
    client->onEnd = [&] { wishes.push_back("end"); };
    server->show();
    server->open(paths);
    server->scan(paths);
    server->quit();
    ASSERT_TRUE(comes([&] { return wishes.size() == 4; }));
    EXPECT_THAT(wishes, ElementsAre("show", "open /y z.ini", "scan /x.ini", "end"));
}

TEST_F(WindowProcessesTest, messagesOfNoSenseChangeNothing) {
    auto [near, far] = connectedSockets();
    server = std::make_unique<WindowServer>(
        std::make_unique<WindowChannel>(std::move(near)), library, defaults, residentTime);
    auto [nearWindow, farWindow] = connectedSockets();
    client = std::make_unique<WindowClient>(std::move(nearWindow), windowTime);
    WindowChannel toServer(std::move(far));
    WindowChannel toClient(std::move(farWindow));
    for (const auto* type : {"render", "launch", "register", "delete", "set", "visibility", "items", "changes",
             "preview", "deleted", "settings", "open", "show", "nonsense"})
        for (const auto* rest : {R"("path":1)", R"("paths":{"a":1})", R"("items":[1,{"path":"/a"}],"changes":7)",
                 R"("changes":[1,{"index":9},{"index":-1,"item":{}}],"index":99999)", R"("values":[1],"request":-5)"})
            for (auto* channel : {&toServer, &toClient})
                channel->send(nlohmann::json::parse(std::string(R"({"type":")") + type + "\"," + rest + "}"));
    bool isDone = false;
    client->onOpen = [&](const auto& paths) { isDone = paths.size() == 1; };
    toClient.send({{"type", "open"}, {"paths", {"/last.ini"}}});
    client->library().renderWidget("/x.ini");
    toServer.send({{"type", "render"}, {"path", "/last.ini"}});
    ASSERT_TRUE(comes([&] { return isDone && !library.asked.empty(); }));
    EXPECT_THAT(library.asked, ElementsAre("render /last.ini"));
    EXPECT_THAT(client->library().libraryItems(), IsEmpty());
    EXPECT_EQ(defaults.texts["targetMediaPlayer"], "Spotify");
}

TEST_F(WindowProcessesTest, theEndOfOneProcessIsToldToTheOther) {
    connect();
    bool hasEnded = false;
    server->onEnd = [&] {
        hasEnded = true;
        server.reset();
    };
    client.reset();
    ASSERT_TRUE(comes([&] { return hasEnded; }));
    library.notify();

    connect();
    hasEnded = false;
    client->onEnd = [&] { hasEnded = true; };
    server.reset();
    EXPECT_TRUE(comes([&] { return hasEnded; }));
    client->library().renderWidget("/a.ini");
    EXPECT_THAT(library.asked, IsEmpty());
}

} // namespace
} // namespace Ostrel
