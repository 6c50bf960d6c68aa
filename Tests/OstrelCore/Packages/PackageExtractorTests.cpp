#include "OstrelCore/Packages/PackageExtractor.h"

#include "OstrelCore/Files/FileDescriptor.h"
#include "Support/TemporaryFolder.h"
#include "Support/ZipBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/stat.h>

namespace Ostrel {

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::Optional;

constexpr std::uint32_t Link = 0120777;

/// "path=contents" of every file, and "path/" of every folder without one, sorted.
std::vector<std::string> tree(const fs::path& folder) {
    std::vector<std::string> result;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const auto path = entry.path().lexically_relative(folder).string();
        if (entry.is_directory() && !fs::is_empty(entry))
            continue;
        if (entry.is_directory()) {
            result.push_back(path + "/");
            continue;
        }
        std::ifstream file(entry.path(), std::ios::binary);
        result.push_back(path + "=" + std::string(std::istreambuf_iterator<char>(file), {}));
    }
    std::ranges::sort(result);
    return result;
}

/// What a package becomes on disk; absent when it is refused. Fails when anything appears beside the destination.
std::optional<std::vector<std::string>> extracted(std::string_view bytes, const PackageLimits& limits = {}) {
    const TemporaryFolder folder;
    const auto destination = fs::path(folder.path()) / "inner" / "destination";
    fs::create_directories(destination);
    const FileDescriptor package(open(folder.write("package", bytes).c_str(), O_RDONLY | O_CLOEXEC));
    const bool done = PackageExtractor::extract(package.get(), destination, limits);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 2);
    EXPECT_EQ(std::distance(fs::directory_iterator(destination.parent_path()), {}), 1);
    return done ? std::optional(tree(destination)) : std::nullopt;
}

std::optional<std::vector<std::string>> extracted(const ZipEntry& entry) {
    return extracted(ZipBuilder().add({"before.ini", "1"}).add(entry).build());
}

} // namespace

TEST(PackageExtractor, writesFilesAndFoldersOfAnyWriting) {
    const auto archive = ZipBuilder()
                             .add({"RMSKIN.ini", "[rmskin]"})
                             .add({"Skins/", ""})
                             .add({"Skins\\Suite\\Clock\\Clock.ini", "a"})
                             .add({"./Skins//Suite/Empty\\", ""})
                             .add({"Skins/Suite/Clock/Clock.ini", "later"})
                             .add({"Skins/suite/clock.ini", "other case"})
                             .build();
    const auto files = ElementsAre("RMSKIN.ini=[rmskin]", "Skins/Suite/Clock/Clock.ini=later", "Skins/Suite/Empty/",
        "Skins/suite/clock.ini=other case");
    EXPECT_THAT(extracted(archive), Optional(files));
    EXPECT_THAT(extracted(withPackageFooter(archive)), Optional(files));
}

TEST(PackageExtractor, decodesNamesOfEveryEncoding) {
    const std::vector<std::pair<ZipEntry, std::string>> cases = {
        {{"\xC3\xA4.ini", "1", ZipUTF8Flag}, "\xC3\xA4.ini=1"},
        {{"\xC3\xA4.ini", "1"}, "\xC3\xA4.ini=1"},
        {{"Gr\x94\xE1\x65\\x.ini", "1"},
            "Gr\xC3\xB6\xC3\x9F"
            "e/x.ini=1"},
        {{"Gr\x94\xE1\x65/x.ini", "1", ZipUTF8Flag},
            "Gr\xC3\xB6\xC3\x9F"
            "e/x.ini=1"},
        {{"_.ini", "1", 0, 0, 0, -1, unicodePathField("_.ini", "\xD0\xA7.ini")}, "\xD0\xA7.ini=1"},
        {{"\xE4\xF6\xFC.ini", "1", 0, 0, 0100644}, "\xCE\xA3\xC3\xB7\xE2\x81\xBF.ini=1"},
    };
    for (const auto& [entry, expected] : cases) {
        const auto archive = ZipBuilder().add({"a", ""}).add(entry).add({"b", ""}).build();
        EXPECT_THAT(extracted(archive), Optional(testing::UnorderedElementsAre("a=", "b=", expected))) << entry.name;
    }
}

TEST(PackageExtractor, refusesNamesThatLeadElsewhere) {
    const std::string longName(300, 'n');
    std::string deep;
    for (int i = 0; i < 80; ++i)
        deep += "d/";
    const std::vector<std::string> names = {"/x.ini", "\\x.ini", "../x.ini", "..\\x.ini", "a/../../x.ini", "a/..", "..",
        "C:\\x.ini", "c:x.ini", "\\\\server\\share\\x.ini", longName, std::string(4096, 'a'), deep + "x.ini",
        "__MACOSX/../../x.ini", "before.ini/x.ini"};
    for (const auto& name : names)
        EXPECT_EQ(extracted(ZipEntry{name, "x"}), std::nullopt) << name;
    EXPECT_THAT(
        extracted(ZipEntry{"a..b/..c/x:y.ini", "2"}), Optional(ElementsAre("a..b/..c/x:y.ini=2", "before.ini=1")));
}

TEST(PackageExtractor, writesNoLinksAndNoDevices) {
    const auto withLink = [](const char* target) { return extracted(ZipEntry{"a/link", target, 0, 0, Link}); };
    for (const auto* target : {"/etc", "../../x", "a/../../../x", "C:\\x", "\\x", "..\\..\\x"})
        EXPECT_EQ(withLink(target), std::nullopt) << target;
    for (const auto* target : {"../x", "x/../../a", "x", "."})
        EXPECT_THAT(withLink(target), Optional(ElementsAre("before.ini=1"))) << target;
    for (const std::uint32_t type : {0020666U, 0060666U, 0140666U})
        EXPECT_EQ(extracted(ZipEntry{"device", "", 0, 0, type}), std::nullopt) << type;
    EXPECT_EQ(extracted(ZipBuilder().add({"link", "a", 0, 0, Link}).add({"link/x.ini", "1"}).build()),
        std::vector<std::string>{"link/x.ini=1"});
    EXPECT_THAT(extracted(ZipEntry{"__MACOSX/Skins/A/._A.ini", "fork"}), Optional(ElementsAre("before.ini=1")));
}

TEST(PackageExtractor, refusesBrokenAndEncryptedArchives) {
    const auto archive = ZipBuilder().add({"a.ini", "some text"}).add({"b.ini", "more"}).build();
    for (std::size_t size = 0; size < archive.size(); size += size + 30 < archive.size() ? 11 : 1)
        EXPECT_EQ(extracted(archive.substr(0, size)), std::nullopt) << size;
    auto damaged = archive;
    damaged[damaged.find("some")] = 'S';
    EXPECT_EQ(extracted(damaged), std::nullopt);
    EXPECT_EQ(extracted(ZipEntry{"a.ini", "0123456789abcdef", ZipEncryptedFlag}), std::nullopt);
    EXPECT_EQ(extracted(ZipEntry{"a.ini", "no deflated data", 0, ZipDeflate}), std::nullopt);
    EXPECT_EQ(extracted(ZipEntry{"a.ini", "x", 0, 14}), std::nullopt) << "a method that takes memory at will";
}

TEST(PackageExtractor, refusesEntriesThatShareTheirBytes) {
    ZipBuilder inner;
    inner.add({"inner.ini", "text"});
    ZipBuilder outer;
    outer.add({"outer.ini", inner.build()});
    const auto offset = outer.size() - inner.build().size();
    EXPECT_THAT(extracted(outer.build()), Optional(testing::SizeIs(1)));
    EXPECT_EQ(extracted(outer.addListed({"inner.ini", "text"}, offset).build()), std::nullopt);
}

TEST(PackageExtractor, readsTheOpenFileWhateverTakesItsPlace) {
    const TemporaryFolder folder;
    fs::create_directory(folder.path() + "/to");
    const auto path = folder.write("package", ZipBuilder().add({"old.ini", "1"}).build());
    const FileDescriptor package(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    fs::rename(folder.write("other", ZipBuilder().add({"../new.ini", "2"}).build()), path);
    EXPECT_TRUE(PackageExtractor::extract(package.get(), folder.path() + "/to"));
    EXPECT_THAT(tree(folder.path() + "/to"), ElementsAre("old.ini=1"));
}

TEST(PackageExtractor, boundsWhatAPackageBecomes) {
    EXPECT_TRUE(extracted(zipOfZeros("a", 1 << 20)).has_value());
    EXPECT_FALSE(extracted(zipOfZeros("a", 40 << 20)).has_value()) << "a thousand times as large as its package";
    EXPECT_EQ(extracted(ZipEntry{"a", "x", 0, 0, 0, 0xFFFFFFF0}), std::nullopt) << "claims four gigabytes";
    const auto three = ZipBuilder().add({"a/b/1", "123"}).add({"a/b/2", "45"}).add({"a/b/3", "6"}).build();
    const std::vector<std::pair<PackageLimits, bool>> cases = {
        {{.entries = 3, .files = 5, .bytes = 6}, true},
        {{.entries = 2}, false},
        {{.files = 4}, false},
        {{.bytes = 5}, false},
        {{.ratio = 0, .bytesOfAnyPackage = 6}, true},
        {{.ratio = 0, .bytesOfAnyPackage = 5}, false},
    };
    for (std::size_t i = 0; i < cases.size(); ++i)
        EXPECT_EQ(extracted(three, cases[i].first).has_value(), cases[i].second) << i;
}

TEST(PackageExtractor, refusesAMillionEntries) {
    ZipBuilder builder;
    builder.add({"a", ""}).addListed({"a", ""}, 0, 1'000'000);
    EXPECT_EQ(extracted(builder.build()), std::nullopt) << "all of one entry";
    ZipBuilder folders;
    for (int i = 0; i < 70'000; ++i)
        folders.add({std::string("f/"), ""});
    EXPECT_EQ(extracted(folders.build()), std::nullopt) << "little in the list, little on disk";
}

TEST(PackageExtractor, makesPrivateFoldersWhateverTheUmask) {
    for (const mode_t mask : {0U, 0777U}) {
        const TemporaryFolder folder;
        const auto bytes = ZipBuilder().add({"Skins/A/a.ini", "1", 0, 0, 0104777}).add({"Skins/B/", ""}).build();
        const FileDescriptor package(open(folder.write("package", bytes).c_str(), O_RDONLY | O_CLOEXEC));
        fs::create_directory(folder.path() + "/to");
        const auto before = umask(mask);
        const bool done = PackageExtractor::extract(package.get(), folder.path() + "/to");
        umask(before);
        ASSERT_TRUE(done);
        for (const auto* path : {"/to/Skins", "/to/Skins/A", "/to/Skins/B"})
            EXPECT_EQ(fs::status(folder.path() + path).permissions(), fs::perms::owner_all) << path;
        EXPECT_EQ(fs::status(folder.path() + "/to/Skins/A/a.ini").permissions(),
            fs::perms::owner_read | fs::perms::owner_write);
    }
}

} // namespace Ostrel
