#include "OstrelCore/Packages/SkinPathResolver.h"

#include "Support/TemporaryFolder.h"
#include "Support/ZipBuilder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

namespace Ostrel {

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

/// A folder for skins, and one that stands in for the temporary folder.
class SkinPathResolverTest : public testing::Test {
protected:
    SkinPathResolverTest() { setenv("TMPDIR", temporary_.path().c_str(), 1); }
    ~SkinPathResolverTest() override { unsetenv("TMPDIR"); }

    std::string path(std::string_view relative) const { return folder_.path() + "/" + std::string(relative); }
    std::string root() const { return temporary_.path() + "/OstrelRMSkinExtraction"; }

    std::vector<std::string> expand(std::vector<std::string> paths) const { return SkinPathResolver::expand(paths); }

    /// The skins of a package, by their path in it.
    std::vector<std::string> packageSkins(const ZipBuilder& archive, std::string_view name = "p.rmskin") const {
        std::vector<std::string> skins;
        for (const auto& skin : expand({folder_.write(name, withPackageFooter(archive.build()))})) {
            const auto below = fs::path(skin).lexically_relative(root());
            EXPECT_THAT(below.begin()->string(),
                testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}"));
            skins.push_back(below.lexically_relative(*below.begin()).string());
        }
        return skins;
    }

    std::size_t extractionCount() const {
        return fs::exists(root()) ? static_cast<std::size_t>(std::distance(fs::directory_iterator(root()), {})) : 0;
    }

    TemporaryFolder folder_;
    TemporaryFolder temporary_;
};

} // namespace

TEST_F(SkinPathResolverTest, collectsEveryINIOfAFolder) {
    for (const auto* file :
        {"b/Skin.INI", "a.ini", "rmskin.ini", "b/@Resources/.hidden/deep.ini", "x.inc", ".ini", "ini"})
        folder_.write(file, "");
    fs::create_directory(path("empty"));
    fs::create_directory_symlink(path("b"), path("linked"));
    fs::create_symlink("nowhere", path("dangling.ini"));
    EXPECT_THAT(expand({folder_.path() + "/"}),
        ElementsAre(path("a.ini"), path("b/@Resources/.hidden/deep.ini"), path("b/Skin.INI"), path("dangling.ini"),
            path("rmskin.ini")));
    EXPECT_THAT(
        expand({path("linked")}), ElementsAre(path("linked/@Resources/.hidden/deep.ini"), path("linked/Skin.INI")));
    EXPECT_THAT(expand({path("empty")}), IsEmpty());
    EXPECT_THAT(expand({}), IsEmpty());
}

TEST_F(SkinPathResolverTest, namesEachSkinOnceAndSorted) {
    folder_.write("b.ini", "");
    folder_.write("A/z.ini", "");
    folder_.write("notes.txt", "");
    EXPECT_THAT(expand({path("b.ini"), path("notes.txt"), path("missing.ini"), folder_.path(), path("b.ini")}),
        ElementsAre(path("A/z.ini"), path("b.ini")));
    const std::vector<std::string> given = {path("missing.ini"), path("notes.txt"), path("b.ini")};
    EXPECT_THAT(SkinPathResolver::resolve(given).unreadablePaths, ElementsAre(path("missing.ini")));
}

TEST_F(SkinPathResolverTest, walksATreeOfAnyDepth) {
    std::string deep = path("deep");
    while (deep.size() < 1500)
        deep += "/folder";
    fs::create_directories(deep);
    folder_.write(deep.substr(folder_.path().size() + 1) + "/x.ini", "");
    EXPECT_THAT(expand({path("deep")}), ElementsAre(deep + "/x.ini"));
}

TEST_F(SkinPathResolverTest, choosesTheSkinsOfAPackage) {
    EXPECT_THAT(packageSkins(ZipBuilder()
                                 .add({"RMSKIN.ini", ""})
                                 .add({"Layouts\\x.ini", ""})
                                 .add({"Skins\\Foo\\Foo.ini", ""})
                                 .add({"Skins\\Foo\\Rainstaller.CFG", ""})
                                 .add({"Skins/Foo/rmskin.ini", ""})
                                 .add({"Other/SKINS/B/b.ini", ""}),
                    "A.RMSKIN"),
        ElementsAre("Other/SKINS/B/b.ini", "Skins/Foo/Foo.ini"));
    EXPECT_THAT(packageSkins(ZipBuilder().add({"x.ini", ""}).add({"RMSKIN.INI", "1"})), ElementsAre("x.ini"));
    EXPECT_THAT(packageSkins(ZipBuilder().add({"Myskins/x.ini", ""}).add({"Skins.ini", "12"})),
        ElementsAre("Myskins/x.ini", "Skins.ini"));
    EXPECT_THAT(packageSkins(ZipBuilder().add({"rmskin.ini", "123"})), IsEmpty());
}

TEST_F(SkinPathResolverTest, unpacksAPackageOnceWhileItStaysTheSame) {
    const auto package = folder_.write("p.rmskin", ZipBuilder().add({"x.ini", "1"}).build());
    fs::create_symlink(package, path("link.rmskin"));
    const auto first = expand({package});
    EXPECT_EQ(expand({path("link.rmskin"), package}), first);
    EXPECT_EQ(extractionCount(), 1U);
    EXPECT_EQ(fs::status(root()).permissions(), fs::perms::owner_all);

    fs::last_write_time(package, fs::last_write_time(package) + std::chrono::milliseconds(1));
    EXPECT_NE(expand({package}), first);
    fs::remove_all(root());
    EXPECT_EQ(expand({package}).size(), 1U) << "gone from the disk, so unpacked again";
    EXPECT_EQ(extractionCount(), 1U);
}

TEST_F(SkinPathResolverTest, leavesNothingOfAPackageThatFails) {
    const auto package = folder_.write("p.rmskin", ZipBuilder().add({"a/x.ini", "1"}).add({"../y.ini", "2"}).build());
    fs::create_directory(path("folder.rmskin"));
    mkfifo(path("pipe.rmskin").c_str(), 0600);
    const std::vector<std::string> given = {package, path("folder.rmskin"), path("pipe.rmskin")};
    const auto result = SkinPathResolver::resolve(given);
    EXPECT_THAT(result.skinPaths, IsEmpty());
    EXPECT_THAT(result.unreadablePaths, ElementsAre(package, path("pipe.rmskin")));
    EXPECT_EQ(extractionCount(), 0U);
    EXPECT_FALSE(fs::exists(root() + "/../y.ini"));
}

TEST_F(SkinPathResolverTest, leavesNothingWhenTheDiskFails) {
    const auto package = folder_.write("p.rmskin", ZipBuilder().add({"x.ini", std::string(200'000, 'x')}).build());
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small = {100'000, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const auto skins = expand({package});
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_THAT(skins, IsEmpty());
    EXPECT_EQ(extractionCount(), 0U);
    EXPECT_EQ(expand({package}).size(), 1U) << "a failure is not remembered";
}

TEST_F(SkinPathResolverTest, servesSeveralThreads) {
    const auto package = folder_.write("p.rmskin", ZipBuilder().add({"x.ini", "1"}).build());
    std::vector<std::vector<std::string>> found(4);
    std::vector<std::thread> threads;
    for (auto& skins : found)
        threads.emplace_back([&] { skins = expand({package}); });
    for (auto& thread : threads)
        thread.join();
    for (const auto& skins : found)
        EXPECT_THAT(skins, testing::SizeIs(1));
    EXPECT_THAT(found, testing::Contains(expand({package})));
}

TEST_F(SkinPathResolverTest, unpacksIntoNoFolderThatAnotherMayChange) {
    const auto elsewhere = path("elsewhere");
    fs::create_directory(elsewhere);
    fs::create_directory_symlink(elsewhere, root());
    const auto skins = expand({folder_.write("p.rmskin", ZipBuilder().add({"x.ini", "1"}).build())});
    ASSERT_EQ(skins.size(), 1U);
    EXPECT_THAT(skins.front(), testing::StartsWith(root() + "-"));
    EXPECT_TRUE(fs::is_empty(elsewhere));

    setenv("TMPDIR", path("missing").c_str(), 1);
    EXPECT_THAT(expand({folder_.write("q.rmskin", ZipBuilder().add({"x.ini", "1"}).build())}), IsEmpty());
}

} // namespace Ostrel
