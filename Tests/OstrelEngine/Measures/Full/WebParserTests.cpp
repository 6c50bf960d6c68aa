#include "OstrelEngine/Measures/Full/WebPage.h"
#include "OstrelPlatform/Linux/Web/CurlFetcher.h"
#include "OstrelPlatform/Linux/Web/LocalAddress.h"
#include "Support/ScriptedSkin.h"
#include "Support/WebServer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include <sys/stat.h>

namespace Ostrel {

namespace {

struct WebSkin : ScriptedSkin {
    CurlFetcher fetcher{fake.queue, {.connectSeconds = 2, .totalSeconds = 1, .pauseSeconds = 0.05}};

    WebSkin() { ports.web = &fetcher; }
    /// A parent that has delivered, or failed.
    BaseMeasure& fetched(Pairs options) {
        auto& measure = add("P", "WebParser", options);
        for (const char* action :
            {"FinishAction", "OnConnectErrorAction", "OnRegExpErrorAction", "OnDownloadErrorAction"}) {
            if (!measure.options().contains(action))
                measure.setOption(action, action);
        }
        measure.update();
        EXPECT_TRUE(waitFor([&] { return hasLine("run "); }));
        return measure;
    }
    std::string page(std::string_view text) { return "file://" + folder.write("Skins/Pack/page.txt", text); }
};

std::string contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

TEST(WebParser, PartsOfAPage) {
    WebSkin skin;
    auto& child = skin.add(
        "C", "Plugin:Plugins\\WebParser.dll", {{"URL", "[P]"}, {"StringIndex", "2"}, {"Substitute", "\"b\":\"B\""}});
    auto& inner = skin.add(
        "I", "WebParser", {{"URL", "[P]"}, {"StringIndex", "3"}, {"RegExp", "(\\d)(\\d)"}, {"StringIndex2", "2"}});
    auto& grandchild = skin.add("G", "WebParser", {{"URL", "[I]"}, {"StringIndex", "1"}});
    auto& missing = skin.add("N", "WebParser", {{"URL", "[P]"}, {"StringIndex", "9"}, {"Substitute", "\"\":\"none\""}});
    auto& failing = skin.add("F", "WebParser", {{"URL", "[P]"}, {"RegExp", "nowhere"}, {"ErrorString", "oops"}});
    const auto url = skin.page("<a>\n<b>12</b> 21\xC2\xB0");
    auto& parent
        = skin.fetched({{"URL", url}, {"RegExp", "\"(?siU)<a>(.*)<(b)>(.*)</B>(.*)$\""}, {"StringIndex", "4"}});
    EXPECT_EQ(parent.value().stringValue, " 21\xC2\xB0");
    EXPECT_EQ(parent.value().numericValue, 21);
    EXPECT_EQ(child.value().stringValue, "B");
    EXPECT_EQ(inner.value().stringValue, "2");
    EXPECT_EQ(grandchild.value().stringValue, "1");
    EXPECT_EQ(missing.value().stringValue, "none");
    EXPECT_EQ(failing.value().stringValue, "oops");
    // All parts have arrived before an action runs.
    EXPECT_EQ(skin.lastLine(), "run FinishAction");
    EXPECT_EQ(std::ranges::count_if(skin.lines, [](const auto& line) { return line.starts_with("arrived"); }), 6);
    EXPECT_TRUE(skin.hasLine("log N there is no capture 9"));

    skin.folder.write("Skins/Pack/page.txt", "nothing");
    skin.lines.clear();
    child.executeCommand("Update");
    EXPECT_TRUE(skin.waitFor([&] { return skin.hasLine("run OnRegExpErrorAction"); }));
    EXPECT_FALSE(skin.hasLine("FinishAction"));
    EXPECT_EQ(child.value().stringValue, "B") << "the old values stay";
    child.executeCommand("Reset");
    EXPECT_EQ(child.value().stringValue + parent.value().stringValue, "");
}

TEST(WebParser, TextsAreDecoded) {
    const std::tuple<const char*, int, const char*> references[]
        = {{"&lt;&#65;&#x42;&eacute;&amp;lt;", 1, "<AB\xC3\xA9&lt;"}, {"&lt;&#65;", 2, "&lt;A"},
            {"&lt;&#65;", 3, "<&#65;"}, {"&nope;&#0;&#xD800;&#99999999999;&", 1, "&nope;&#0;&#xD800;&#99999999999;&"}};
    for (const auto& [text, mode, result] : references)
        EXPECT_EQ(WebPage::withoutReferences(text, mode), result) << text;
    EXPECT_EQ(
        WebPage::withoutCodePoints("\\u0041\\U00000042\\ud83d\\ude00\\ud83d\\u12"), "AB\xF0\x9F\x98\x80\\ud83d\\u12");
    const std::tuple<const char*, int, const char*> pages[]
        = {{"\xE4", 1251, "\xD0\xB4"}, {"\xE4", 1252, "\xC3\xA4"}, {"\xA4", 28605, "\xE2\x82\xAC"},
            {"\xC3\xA4", 0, "\xC3\xA4"}, {"\xE4", 0, "\xC3\xA4"}, {"\x82\xA0", 932, "\xE3\x81\x82"}, {"a", 99999, "a"}};
    for (const auto& [bytes, codePage, result] : pages)
        EXPECT_EQ(WebPage::decoded(bytes, codePage), result) << codePage;
    EXPECT_EQ(WebPage::decoded(std::string("a\0b\0", 4), 1200), "ab");
    EXPECT_EQ(
        WebPage::encodedAddress("http://h/a b?\xC3\xBC=\"1\"&c={x}#y"), "http://h/a%20b?%C3%BC=%221%22&c=%7Bx%7D#y");
    EXPECT_EQ(WebPage::hostOf("HTTPS://u:p@Example.ORG:8/x@y"), "example.org");
    EXPECT_EQ(WebPage::hostOf("http://good.org\\@bad.org/"), "good.org");
    EXPECT_EQ(WebPage::hostOf("file:///etc/passwd") + WebPage::hostOf("//x"), "");
}

TEST(WebParser, RequestsAsTheOptionsSay) {
    std::string seen;
    WebServer server([&](const std::string& request) {
        seen = request;
        return WebServer::page("v1", "ETag: \"t\"\r\n");
    });
    WebSkin skin;
    auto& measure = skin.fetched(
        {{"URL", server.url("/a b")}, {"UserAgent", "Mine/1"}, {"Header", "X-A: 1"}, {"Header2", "X-B: 2\r\nX-Evil: 1"},
            {"Header3", "X-C: 3"}, {"Flags", "PragmaNoCache | Secure"}, {"UpdateRate", "3"}});
    EXPECT_EQ(measure.value().stringValue, "v1");
    for (const char* part : {"GET /a%20b HTTP/1.1", "User-Agent: Mine/1", "X-A: 1", "X-C: 3", "Pragma: no-cache"})
        EXPECT_NE(seen.find(part), std::string::npos) << part;
    EXPECT_EQ(seen.find("X-Evil"), std::string::npos);
    EXPECT_TRUE(skin.lines[0].starts_with("allow http://127.0.0.1:")) << skin.lines[0];
    EXPECT_EQ(skin.lines[1], "allow local:127.0.0.1");

    for (const int expected : {1, 1, 2}) {
        measure.update();
        skin.waitFor([&] { return server.requests >= expected; });
        EXPECT_EQ(server.requests, expected) << "each third update fetches";
    }
    EXPECT_NE(seen.find("If-None-Match: \"t\""), std::string::npos);
}

TEST(WebParser, AConfirmedPageComesFromTheStore) {
    WebServer server([&](const std::string& request) {
        return request.find("If-None-Match") == std::string::npos
            ? WebServer::page("kept", "ETag: \"t\"\r\n")
            : std::string("HTTP/1.1 304 Not Modified\r\nConnection: close\r\n\r\n");
    });
    WebSkin skin;
    auto& measure = skin.fetched({{"URL", server.url("/")}});
    measure.executeCommand("Reset");
    measure.executeCommand("Update");
    EXPECT_TRUE(skin.waitFor([&] { return measure.value().stringValue == "kept"; }));
    EXPECT_EQ(server.requests, 2);
}

TEST(WebParser, HostileServers) {
    std::string target;
    WebServer server([&](const std::string& request) {
        const auto path = request.substr(4, request.find(' ', 4) - 4);
        const auto redirect = [](const std::string& to) {
            return "HTTP/1.1 302 Found\r\nConnection: close\r\nLocation: " + to + "\r\n\r\n";
        };
        if (path == "/silent")
            return std::string();
        if (path == "/endless")
            return WebServer::page(WebServer::Endless);
        if (path == "/ring")
            return redirect("/ring");
        if (path == "/file")
            return redirect("file://" + target);
        if (path == "/once")
            return redirect("/good");
        if (path == "/broken")
            return WebServer::page("no gzip at all", "Content-Encoding: gzip\r\n");
        if (path == "/error")
            return std::string("HTTP/1.1 500 No\r\nConnection: close\r\n\r\ngood");
        if (path == "/rubbish")
            return std::string("\0\xFF rubbish\r\n\r\n", 13);
        return WebServer::page("good");
    });
    const std::pair<const char*, const char*> cases[]
        = {{"/once", "run FinishAction"}, {"/silent", "run OnConnectErrorAction"},
            {"/endless", "run OnConnectErrorAction"}, {"/ring", "run OnConnectErrorAction"},
            {"/file", "run OnConnectErrorAction"}, {"/broken", "run OnConnectErrorAction"},
            {"/rubbish", "run OnConnectErrorAction"}, {"/error", "run OnRegExpErrorAction"}};
    for (const auto& [path, outcome] : cases) {
        WebSkin skin;
        target = skin.folder.write("secret.txt", "good");
        const auto& measure = skin.fetched({{"URL", server.url(path)}, {"RegExp", "good"}});
        EXPECT_EQ(skin.lastLine(), outcome) << path;
        EXPECT_EQ(measure.value().stringValue, std::string_view(path) == "/once" ? "good" : "") << path;
    }
    WebSkin skin;
    skin.fetched({{"URL", "http://127.0.0.1:1/"}});
    EXPECT_TRUE(skin.hasLine("does not answer since"));
}

TEST(WebParser, OnlyWhatIsAllowedIsReached) {
    WebServer server([](const std::string&) { return WebServer::page("x"); });
    struct Guarded : WebSkin {
        std::string refused;
        bool isAllowed(Permission permission, std::string_view detail) override {
            WebSkin::isAllowed(permission, detail);
            return detail.find(refused) == std::string_view::npos;
        }
    };
    for (const char* refused : {"127.0.0.1", "local:"}) {
        Guarded skin;
        skin.refused = refused;
        auto& measure = skin.add("P", "WebParser", {{"URL", server.url("/")}, {"OnConnectErrorAction", "failed"}});
        measure.update();
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        skin.fake.queue.runQueued();
        EXPECT_EQ(measure.value().stringValue, "");
    }
    EXPECT_EQ(server.requests, 0);
    for (const char* url : {"ftp://127.0.0.1/", "gopher://x/", "javascript:1", "http:///x", ""}) {
        WebSkin skin;
        skin.add("P", "WebParser", {{"URL", url}}).update();
        EXPECT_FALSE(skin.hasLine("allow ")) << url;
    }
    Guarded skin;
    skin.refused = "/";
    const auto secret = skin.folder.write("secret.txt", "secret");
    std::filesystem::create_symlink(secret, skin.packFolders.root + "link.txt");
    for (const auto& url : {"file://" + secret, "file://" + skin.packFolders.root + "../../secret.txt",
             "file://" + skin.packFolders.root + "link.txt"}) {
        skin.lines.clear();
        EXPECT_EQ(skin.fetched({{"URL", url}}).value().stringValue, "") << url;
        EXPECT_EQ(skin.lastLine(), "run OnConnectErrorAction");
    }
    for (const char* local : {"127.1", "2130706433", "0x7f.1", "localhost.", "[::1]", "[::ffff:10.0.0.1]", "[fe80::1]",
             "[64:ff9b::a00:1]", "[fd00::1]", "169.254.169.254", "172.31.0.1:80", "printer.local", "0.0.0.0", ""})
        EXPECT_TRUE(isLocalName(local)) << local;
    for (const char* far : {"example.org", "8.8.8.8", "[2001:4860:4860::8888]", "172.32.0.1", "11.0.0.1:80"})
        EXPECT_FALSE(isLocalName(far)) << far;
}

TEST(WebParser, Downloads) {
    WebServer server([](const std::string& request) {
        return request.starts_with("GET /missing") ? std::string("HTTP/1.1 404 No\r\nConnection: close\r\n\r\n")
                                                   : WebServer::page("bytes");
    });
    WebSkin skin;
    auto& composed = skin.add("D", "WebParser",
        {{"URL", server.url("/[P].png")}, {"StringIndex", "1"}, {"Download", "1"}, {"DownloadFile", "sub\\icon.png"},
            {"FinishAction", "saved"}});
    skin.fetched({{"URL", skin.page("icon=cloud;")}, {"RegExp", "icon=(.*?);"}});
    ASSERT_TRUE(skin.waitFor([&] { return skin.hasLine("run saved"); }));
    const auto file = skin.packFolders.root + "DownloadFile/sub/icon.png";
    EXPECT_EQ(composed.value().stringValue, file);
    EXPECT_EQ(contents(file), "bytes");
    struct stat status { };
    stat(file.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0600U);

    for (const char* place : {"../out.png", "/tmp/out.png", "C:\\out.png", "a/../../../out.png", "."}) {
        WebSkin other;
        other.fetched({{"URL", server.url("/x")}, {"Download", "1"}, {"DownloadFile", place}});
        EXPECT_EQ(other.lastLine(), "run OnDownloadErrorAction") << place;
    }
    WebSkin other;
    const auto& temporary = other.fetched({{"URL", server.url("/x y.png?q")}, {"Download", "1"}});
    EXPECT_EQ(contents(temporary.value().stringValue), "bytes");
    EXPECT_TRUE(temporary.value().stringValue.starts_with(other.packFolders.settings));
    WebSkin third;
    third.fetched({{"URL", server.url("/missing")}, {"Download", "1"}});
    EXPECT_EQ(third.lastLine(), "run OnDownloadErrorAction");
}

TEST(WebParser, FetchesAreLimitedAndEndWithTheirSkin) {
    WebServer server([](const std::string&) { return std::string(); });
    {
        WebSkin skin;
        for (int i = 0; i < 8; ++i)
            skin.add("P" + std::to_string(i), "WebParser", {{"URL", server.url("/" + std::to_string(i))}}).update();
        skin.waitFor([&] { return server.requests >= 2; });
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        skin.fake.queue.runQueued();
        EXPECT_EQ(server.mostOpen, 2) << "two for a host";
    }
    WebSkin skin;
    skin.fetched({{"URL", skin.page(std::string(30000, 'a'))}, {"RegExp", "(a+)+b"}});
    EXPECT_EQ(skin.lastLine(), "run OnRegExpErrorAction") << "a pattern that explodes is cut off";
    skin.lines.clear();
    skin.fetched({{"URL", skin.page("x")}, {"RegExp", "(("}});
    EXPECT_EQ(skin.lastLine(), "run OnRegExpErrorAction");
    skin.add("A", "WebParser", {{"URL", "[B]"}});
    skin.add("B", "WebParser", {{"URL", "[A]"}}).executeCommand("Reset");
}

} // namespace

} // namespace Ostrel
