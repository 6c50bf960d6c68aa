#include "OstrelGUI/SessionPaths.h"

#include "OstrelCore/Files/Paths.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace Ostrel {
namespace {

TEST(SessionPaths, tellsThePackOfASkin) {
    struct Row {
        const char* path;
        PackageInfo info;
        const char* root;
    };
    const Row rows[] = {
        {"/x/Skins/Pack/a/b.ini", {"Pack", "a/b.ini"}, "/x/Skins/Pack"},
        {"/x/skins/Pack/a.ini", {"Pack", "a.ini"}, "/x/skins/Pack"},
        {"/x/SKINS/Pack/a.ini", {"Pack", "a.ini"}, "/x/SKINS/Pack"},
        {"/x/Skins/Pack/Skins/Inner/c.ini", {"Inner", "c.ini"}, "/x/Skins/Pack/Skins/Inner"},
        {"/x/Skins/a.ini", {"a.ini", ""}, "/x/Skins/a.ini"},
        {"/Skins/P/a.ini", {"P", "a.ini"}, "/Skins/P"},
        {"/x/MySkins/P/a.ini", {"P", "a.ini"}, "/x/MySkins/P"},
        {"/tmp/a.ini", {"tmp", "a.ini"}, "/tmp"},
        {"/a.ini", {"/", "a.ini"}, "/"},
        {"/x/Pack/Skins", {"Pack", "Skins"}, "/x/Pack"},
    };
    for (const auto& row : rows) {
        const auto info = packageInfoForPath(row.path);
        EXPECT_EQ(info.package, row.info.package) << row.path;
        EXPECT_EQ(info.relativePath, row.info.relativePath) << row.path;
        EXPECT_EQ(packageRootPath(row.path), row.root) << row.path;
    }
    EXPECT_EQ(packageInfoForPath("a.ini"), (PackageInfo{"Unknown Package", "a.ini"}));
    EXPECT_EQ(packageRootPath("/x/Skins/Pack/../Other/./b.ini"), "/x/Skins/Other");
}

TEST(SessionPaths, normalizesPathsAndFileURLs) {
    const std::pair<const char*, const char*> rows[] = {
        {"", ""},
        {" \n\t", ""},
        {"  /a/b.ini\n", "/a/b.ini"},
        {"/a/./c/..//b.ini", "/a/b.ini"},
        {"file:///a/b%20c.ini", "/a/b c.ini"},
        {"FILE:///a/%C3%BC.ini", "/a/ü.ini"},
        {"file://localhost/a/../b.ini", "/b.ini"},
        {"file:/a/b.ini", "/a/b.ini"},
        {"file:///a/100%.ini?x#y", "/a/100%.ini"},
        {"file:///a/%3F%2", "/a/?%2"},
        {"/a/b%20c.ini", "/a/b%20c.ini"},
        {"/a/b#c.ini", "/a/b#c.ini"},
    };
    for (const auto& [text, path] : rows)
        EXPECT_EQ(normalizeSkinPath(text), path) << text;
    EXPECT_EQ(normalizeSkinPath("b.ini"), standardizedPath("b.ini"));
}

TEST(SessionPaths, findsAllSkinsOfAPackAndNoOthers) {
    TemporaryFolder folder;
    const auto a = folder.write("Skins/Pack/A/a.ini", "");
    const auto upper = folder.write("Skins/Pack/B/b.INI", "");
    const auto hidden = folder.write("Skins/Pack/.hidden/c.ini", "");
    folder.write("Skins/Pack/A/readme.txt", "");
    folder.write("Skins/Other/o.ini", "");
    const auto loose = folder.write("Skins/loose.ini", "");
    // A loop of links ends.
    std::filesystem::create_directory_symlink(folder.path() + "/Skins", folder.path() + "/Skins/Pack/A/up");

    const auto related = [](const std::string& path) { return SkinPacks().withRelated(std::span(&path, 1)); };
    EXPECT_EQ(related(a), (std::set<std::string>{a, upper, hidden}));
    EXPECT_EQ(related("file://" + a), (std::set<std::string>{a, upper, hidden}));
    EXPECT_EQ(related(loose), (std::set<std::string>{loose})) << "a file directly in Skins";
    EXPECT_EQ(related("/nowhere/Skins/P/x.ini"), (std::set<std::string>{"/nowhere/Skins/P/x.ini"}));
    EXPECT_EQ(related(" "), std::set<std::string>{});
}

} // namespace
} // namespace Ostrel
