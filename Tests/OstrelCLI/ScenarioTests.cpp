#include "Support/CommandLine.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

// Each `Tests/Scenarios/<name>.ini` is a skin, `<name>.scenario` what happens to it and `<name>.expected` what
// `ostrel trace` has to say: one JSON object for each of its lines, of which only the members written there count. A
// new case is three new files. `<name>.full.ini` and its two run in the full dialect.

namespace Ostrel {
namespace {

namespace fs = std::filesystem;
using JSON = nlohmann::ordered_json;

std::string sourcePath(std::string_view relative) {
    return std::string(std::getenv("OSTREL_SOURCE")) + "/" + std::string(relative);
}

/// Without empty lines and comments.
std::vector<std::string> linesOf(const std::string& path) {
    std::ifstream file(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line[0] != '#')
            lines.push_back(line);
    }
    return lines;
}

/// Where `actual` lacks something of `expected`; empty when it has all of it.
std::string difference(const JSON& expected, const JSON& actual, const std::string& place) {
    if (expected.is_object() && actual.is_object()) {
        for (const auto& [key, value] : expected.items()) {
            if (!actual.contains(key))
                return place + "." + key + " is missing";
            if (auto found = difference(value, actual[key], place + "." + key); !found.empty())
                return found;
        }
        return {};
    }
    if (expected.is_array() && actual.is_array() && expected.size() == actual.size()) {
        for (std::size_t i = 0; i < expected.size(); ++i) {
            if (auto found = difference(expected[i], actual[i], place + "[" + std::to_string(i) + "]"); !found.empty())
                return found;
        }
        return {};
    }
    return expected == actual ? std::string() : place + " is " + actual.dump() + ", not " + expected.dump();
}

void expectTrace(const fs::path& skin) {
    const auto scenario = fs::path(skin).replace_extension(".scenario");
    std::vector<std::string> words{"trace"};
    if (skin.stem().extension() == ".full")
        words.insert(words.end(), {"--dialect", "full"});
    words.insert(words.end(), {"--now", "2026-11-21T10:30:00Z", skin.string(), scenario.string()});
    const auto result = runOstrel(words);
    EXPECT_EQ(result.status, 0) << result.messages;
    // All that may be said is which player stands in for one that is not there.
    EXPECT_THAT(result.messages, testing::AnyOf("", testing::StartsWith("[NowPlaying] ")));
    std::vector<JSON> actual;
    std::istringstream output(result.output);
    for (std::string line; std::getline(output, line);)
        actual.push_back(JSON::parse(line));

    const auto expected = linesOf(fs::path(skin).replace_extension(".expected"));
    ASSERT_EQ(actual.size(), expected.size()) << result.output;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const auto object = JSON::parse(expected[i], nullptr, false);
        ASSERT_FALSE(object.is_discarded()) << expected[i];
        EXPECT_EQ(difference(object, actual[i], actual[i]["step"]), "") << actual[i].dump();
    }
}

TEST(ScenarioTests, tracesWhatIsExpected) {
    setenv("TZ", "UTC", 1);
    std::vector<fs::path> skins;
    for (const auto& entry : fs::directory_iterator(sourcePath("Tests/Scenarios"))) {
        if (entry.path().extension() == ".ini")
            skins.push_back(entry.path());
    }
    ASSERT_FALSE(skins.empty());
    std::ranges::sort(skins);
    // Where the files are that scenarios name.
    const auto folder = fs::current_path();
    fs::current_path(sourcePath("Tests/Scenarios"));
    for (const auto& skin : skins) {
        SCOPED_TRACE(skin.filename());
        expectTrace(skin);
    }
    fs::current_path(folder);
}

/// The skins that people have made: every one of them lives through 100 ticks without a word.
TEST(ScenarioTests, runsRealSkins) {
    const auto folder = sourcePath("../shared/skins");
    if (!fs::is_directory(folder))
        GTEST_SKIP() << "the real skins are not here";
    // Skins write into their own files.
    const TemporaryFolder copies;
    const auto copy = copies.path() + "/skins";
    fs::copy(folder, copy, fs::copy_options::recursive);
    for (const auto& entry : fs::recursive_directory_iterator(copy))
        fs::permissions(entry, fs::perms::owner_write, fs::perm_options::add);
    const auto list = runOstrel({"list", copy});
    ASSERT_EQ(list.status, 0);
    std::istringstream paths(list.output);
    int skins = 0;
    for (std::string path; std::getline(paths, path); ++skins) {
        const auto result = runOstrel({"trace", path, "-"}, "tick 50\ntick 49\n");
        EXPECT_EQ(result.status, 0) << path;
        EXPECT_THAT(result.messages, testing::AnyOf("", testing::StartsWith("[NowPlaying] "))) << path;
        EXPECT_EQ(std::ranges::count(result.output, '\n'), 4) << path;
        EXPECT_THAT(result.output, testing::HasSubstr("\"tick\":100")) << path;
    }
    EXPECT_GT(skins, 10);
}

TEST(ScenarioTests, tellsOfPlayersOnStandardErrorAlone) {
    const TemporaryFolder folder;
    const auto skin = folder.write("Player.ini", "[Now]\nMeasure=NowPlaying\nPlayerName=winamp\nPlayerType=bogus\n");
    for (const auto& command :
        std::vector<std::vector<std::string>>{{"trace", skin}, {"render", skin, "-o", folder.path() + "/out.png"}}) {
        const auto result = runOstrel(command);
        EXPECT_THAT(result.messages, testing::HasSubstr("Invalid PlayerType=\"bogus\" in section [Now]."));
        EXPECT_THAT(result.messages, testing::HasSubstr("winamp"));
        EXPECT_THAT(result.output, testing::Not(testing::HasSubstr("[NowPlaying]")));
    }
}

TEST(ScenarioTests, refusesWhatIsNoScenario) {
    const auto skin = sourcePath("Tests/Scenarios/Layout.ini");
    for (const char* line :
        {"jump", "tick x", "tick -1", "wait", "wait -1", "wait inf", "state now", " tick", "player"}) {
        const auto result = runOstrel({"trace", skin, "-"}, std::string("tick\n") + line + "\n");
        EXPECT_EQ(result.status, 2) << line;
        EXPECT_EQ(result.output, "") << line;
    }
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {}, {skin, "a", "b"}, {"--now", "today", skin}, {"--now"}, {"--what", skin}}) {
        std::vector<std::string> words{"trace"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        EXPECT_EQ(runOstrel(words).status, 2);
    }
    EXPECT_EQ(runOstrel({"trace", skin, "no such scenario"}).status, 1);
    const auto missing = runOstrel({"trace", "no such skin.ini"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.output, "");
    EXPECT_THAT(missing.messages, testing::StartsWith("ostrel: cannot load no such skin.ini\n"));
}

TEST(ScenarioTests, writesDoublesWithTheFewestDigits) {
    const TemporaryFolder folder;
    for (const char* number :
        {"957.431251040267", "700.946330375174", "0.1", "-3.0", "1e+300", "2.26797932753915e+17", "5e-324", "-0.0"}) {
        const auto skin = folder.write("skin.ini", std::string("[M]\nMeasure=String\nString=") + number + "\n");
        const auto result = runOstrel({"trace", skin});
        EXPECT_THAT(result.output, testing::HasSubstr(std::string("{\"M\":{\"number\":") + number + ",\"string\":\""));
    }
}

TEST(ScenarioTests, ticksOnceWithoutAScenario) {
    const auto result = runOstrel({"trace", sourcePath("Tests/Scenarios/Layout.ini")});
    EXPECT_EQ(result.status, 0);
    std::vector<std::string> steps;
    std::istringstream output(result.output);
    for (std::string line; std::getline(output, line);)
        steps.push_back(JSON::parse(line)["step"]);
    EXPECT_THAT(steps, testing::ElementsAre("start", "tick 1", "stop"));
}

} // namespace
} // namespace Ostrel
