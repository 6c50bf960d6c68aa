#include "OstrelCore/Files/Paths.h"

#include "Support/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

namespace Ostrel {

TEST(Paths, takesPathsApart) {
    const struct {
        std::string_view path;
        std::string_view directory;
        std::string_view name;
        std::string_view extension;
    } rows[] = {{"/a/b.ini", "/a", "b.ini", "ini"}, {"/a", "/", "a", ""}, {"a", "", "a", ""}, {"/", "/", "/", ""},
        {"", "", "", ""}, {"/a/b//", "/a", "b", ""}, {"a//b.tar.gz", "a", "b.tar.gz", "gz"}, {"//a", "/", "a", ""},
        {"/a.b/c", "/a.b", "c", ""}, {".hidden", "", ".hidden", ""}, {"x.", "", "x.", ""}};
    for (const auto& row : rows) {
        EXPECT_EQ(deletingLastPathComponent(row.path), row.directory) << row.path;
        EXPECT_EQ(lastPathComponent(row.path), row.name) << row.path;
        EXPECT_EQ(pathExtension(row.path), row.extension) << row.path;
    }
}

TEST(Paths, putsPathsTogether) {
    const struct {
        std::string_view directory;
        std::string_view component;
        std::string_view path;
    } rows[] = {{"/a", "b", "/a/b"}, {"/a/", "/b", "/a/b"}, {"/", "b", "/b"}, {"", "b", "b"}, {"", "/b", "/b"},
        {"/a", "", "/a"}, {"/a", "../b", "/a/../b"}};
    for (const auto& row : rows)
        EXPECT_EQ(appendingPathComponent(row.directory, row.component), row.path);
    EXPECT_EQ(normalizeSeparators("a\\b/c\\\\"), "a/b/c//");
    EXPECT_EQ(standardizedPath("/a/./b/../../../c//d/"), "/c/d");
    EXPECT_EQ(standardizedPath("/.."), "/");
    EXPECT_EQ(standardizedPath("x/../y"), appendingPathComponent(std::filesystem::current_path().string(), "y"));
    EXPECT_TRUE(isAbsolutePath("/x") && isAbsolutePath("~/x"));
    EXPECT_FALSE(isAbsolutePath("C:/x") || isAbsolutePath("x/~") || isAbsolutePath(""));
    const std::string home = std::getenv("HOME") ? std::getenv("HOME") : "";
    setenv("HOME", "/h", 1);
    EXPECT_EQ(expandingTilde("~") + expandingTilde("~/x") + expandingTilde("~x") + expandingTilde("a~"), "/h/h/x~xa~");
    setenv("HOME", home.c_str(), 1);
}

TEST(Paths, findTheNearestResourcesUpward) {
    const TemporaryFolder folder;
    const auto at = [&](const std::string& relative) { return folder.path() + relative; };
    folder.write("pack/@RESOURCES/x", "");
    folder.write("pack/skin/deep/x.ini", "");
    folder.write("pack/own/@Resources/x", "");
    folder.write("pack/file/@Resources", "no folder");
    EXPECT_EQ(resourcesBaseDirectory(at("/pack/skin/deep")), at("/pack"));
    EXPECT_EQ(resourcesBaseDirectory(at("/pack/own/")), at("/pack/own"));
    EXPECT_EQ(resourcesBaseDirectory(at("/pack/file")), at("/pack"));
    EXPECT_EQ(sharedResourcesDirectory(at("/pack/skin/deep")), at("/pack/@RESOURCES"));
    EXPECT_EQ(resourcesBaseDirectory(at("/other")), at("/other"));
    EXPECT_EQ(sharedResourcesDirectory(at("/other")), at("/other/@Resources"));
}

} // namespace Ostrel
