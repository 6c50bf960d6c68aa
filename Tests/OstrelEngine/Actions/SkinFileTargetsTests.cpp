#include "OstrelEngine/Actions/SkinFileTargets.h"

#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace Ostrel {

namespace {

Options variables(std::initializer_list<std::pair<std::string_view, std::string>> pairs) {
    Options options;
    for (const auto& [key, value] : pairs)
        options.set(key, value);
    return options;
}

/// A pack with resources; the skin lies one folder below its root.
struct Pack {
    TemporaryFolder folder;
    std::string root = std::filesystem::canonical(folder.path()).string() + "/Pack";
    std::string skinPath = root + "/Sub/s.ini";

    Pack() {
        folder.write("Pack/@Resources/a.txt", "");
        folder.write("Pack/Sub/s.ini", "");
    }
};

} // namespace

TEST(SkinFileTargets, expandPathVariablesInOrder) {
    const Pack pack;
    const auto live = variables({{"A", "#B#"}, {"B", "b"}, {"C", "#A#"}});
    const SkinFileTargets targets(pack.skinPath, live);
    EXPECT_EQ(targets.expandPathVariables("#@#Images/a.png"), pack.root + "/@Resources/Images/a.png");
    EXPECT_EQ(targets.expandPathVariables("#CurrentPath##CURRENTFILE#"), pack.root + "/Sub/s.ini");
    EXPECT_EQ(targets.expandPathVariables("#a#-#c#-#x#"), "b-#A#-#x#") << "a variable is looked for once, in its turn";
}

TEST(SkinFileTargets, expansionIsBounded) {
    Options doubling;
    for (int i = 0; i < 100; ++i) {
        const auto next = "#V" + std::string(static_cast<std::size_t>(i) + 1, 'x') + "#";
        doubling.set("V" + std::string(static_cast<std::size_t>(i), 'x'), next + next);
    }
    const std::string skinPath = "/nowhere/s.ini";
    EXPECT_LT(SkinFileTargets(skinPath, doubling).expandPathVariables("#V#").size(), std::size_t(1) << 24);
}

TEST(SkinFileTargets, resolveConfigs) {
    const Pack pack;
    const auto live = variables({{"Which", "Clock"}});
    const SkinFileTargets targets(pack.skinPath, live);
    const struct {
        std::string_view config;
        std::optional<std::string_view> file;
        std::string path;
    } rows[] = {
        {"Pack\\Clock", std::nullopt, "/Clock/s.ini"},
        {"pACK/Clock", "  ", "/Clock/s.ini"},
        {"Other", "x\\y.ini", "/Other/x/y.ini"},
        {"PACK", "y.ini", "/y.ini"},
        {"Package\\Clock", std::nullopt, "/Package/Clock/s.ini"},
        {" #Which#\\.\\..\\Deep ", std::nullopt, "/Deep/s.ini"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(targets.resolveConfigPath(row.config, row.file), pack.root + row.path) << row.config;
    EXPECT_EQ(targets.resolveConfigPath("/x//y", "z.ini"), "/x/y/z.ini");
}

TEST(SkinFileTargets, withoutResourcesTheSkinsFolderIsTheRoot) {
    const Options none;
    const std::string skinPath = "/nowhere/Lone/s.ini";
    const SkinFileTargets targets(skinPath, none);
    EXPECT_EQ(targets.resolveConfigPath("Lone\\Deep", std::nullopt), "/nowhere/Lone/Deep/s.ini");
    EXPECT_EQ(targets.expandPathVariables("#@#a"), "/nowhere/Lone/@Resources/a");
}

TEST(SkinFileTargets, resolveFilesToWrite) {
    const auto live = variables({{"V", "x"}});
    const std::string skinPath = "/p/skin/s.ini";
    const SkinFileTargets targets(skinPath, live);
    const std::string home = std::getenv("HOME");
    const struct {
        std::string_view text;
        std::string path;
    } rows[] = {
        {" \"\" ", "/p/skin/s.ini"},
        {"'data\\#V#.inc'", "/p/skin/data/x.inc"},
        {"#CURRENTPATH#v.inc", "/p/skin/v.inc"},
        {"/abs/v.inc", "/abs/v.inc"},
        {"~/v.inc", home + "/v.inc"},
        {"C:\\v.inc", "C:/v.inc"},
        {"C:v.inc", "/p/skin/C:v.inc"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(targets.resolveWriteFilePath(row.text), row.path) << row.text;
}

TEST(SkinFileTargets, tellURLsFromFiles) {
    using External = SkinFileTargets::External;
    using enum External::Kind;
    const Options none;
    const std::string skinPath = "/p/skin/s.ini";
    const SkinFileTargets targets(skinPath, none);
    const struct {
        std::string_view text;
        std::optional<External> target;
    } rows[] = {
        {" '' ", std::nullopt},
        {"\"https://example.org/a b\"", External{url, "https://example.org/a b"}},
        {"mailto:x@example.org", External{url, "mailto:x@example.org"}},
        {"C:/x", External{url, "C:/x"}},
        {"notes.txt", External{file, "/p/skin/notes.txt"}},
        {"..\\a\\.\\b", External{file, "/p/a/b"}},
        {"1a:b", External{file, "/p/skin/1a:b"}},
        {":b", External{file, "/p/skin/:b"}},
        {"/etc//hosts", External{file, "/etc/hosts"}},
        {"#V#.txt", External{file, "/p/skin/#V#.txt"}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(targets.resolveExternalTarget(row.text), row.target) << row.text;
}

} // namespace Ostrel
