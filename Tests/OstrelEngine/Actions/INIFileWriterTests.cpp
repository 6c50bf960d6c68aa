#include "OstrelEngine/Actions/INIFileWriter.h"

#include "OstrelCore/Documents/FileProvider.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace Ostrel::INIFileWriter {

namespace {

std::string contents(const std::string& path) {
    return DiskFileProvider().contentsOfFile(path).value_or("(missing)");
}

} // namespace

TEST(INIFileWriter, writesWhatItReadInAnyEncodingAsUTF8) {
    const TemporaryFolder folder;
    const auto legacy = folder.write("legacy.ini", "[A]\r\nname=Caf\xE9\r\n");
    EXPECT_TRUE(writeKeyValue(legacy, "A", "x", "1"));
    EXPECT_EQ(contents(legacy), "[A]\r\nname=Caf\xC3\xA9\r\n\r\nx=1");

    const auto wide = folder.write("wide.ini", {"\xFF\xFE[\0A\0]\0\n\0x\0=\0\xE9\0", 16});
    EXPECT_TRUE(writeKeyValue(wide, "A", "y", "2"));
    EXPECT_EQ(contents(wide), "[A]\nx=\xC3\xA9\ny=2");
}

TEST(INIFileWriter, makesMissingFilesAndFolders) {
    const TemporaryFolder folder;
    EXPECT_TRUE(writeKeyValue(folder.path() + "/new/deep/store.ini", "V", "k", "1"));
    EXPECT_EQ(contents(folder.path() + "/new/deep/store.ini"), "[V]\nk=1");
}

TEST(INIFileWriter, findsTheFileInAnyCase) {
    const TemporaryFolder folder;
    const auto path = folder.write("Data/Store.INC", "[V]\nk=1\n");
    EXPECT_TRUE(writeKeyValue(folder.path() + "/data/store.inc", "V", "k", "2"));
    EXPECT_EQ(contents(path), "[V]\nk=2\n");
    EXPECT_TRUE(writeKeyValue(folder.path() + "/data/other.inc", "V", "k", "3"));
    EXPECT_EQ(contents(folder.path() + "/Data/other.inc"), "[V]\nk=3");
}

TEST(INIFileWriter, refusesWhatItCannotRead) {
    const TemporaryFolder folder;
    const std::string large(DiskFileProvider::MaxFileSize + 1, 'x');
    const auto path = folder.write("large.ini", large);
    EXPECT_FALSE(writeKeyValue(path, "V", "k", "1"));
    EXPECT_EQ(std::filesystem::file_size(path), large.size());
    EXPECT_FALSE(writeKeyValue(folder.path(), "V", "k", "1"));
    EXPECT_FALSE(writeKeyValue("", "V", "k", "1"));
    EXPECT_FALSE(writeKeyValue(folder.path() + std::string("/a\0b", 4), "V", "k", "1"));
}

} // namespace Ostrel::INIFileWriter
