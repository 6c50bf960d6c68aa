#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/TextDecoding.h"
#include "OstrelCore/Files/Paths.h"

#include "Support/TemporaryFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace Ostrel {

using namespace std::string_literals;

TEST(TextDecoding, goesByTheByteOrderMarkWhenTheRestFitsIt) {
    const struct {
        std::string bytes;
        std::string text;
    } rows[] = {
        {"", ""},
        {"a\xC3\xA9", "aé"},
        {"\xEF\xBB\xBF", ""},
        {"\xEF\xBB\xBF"
         "aé",
            "aé"},
        {"\xEF\xBB\xBF\xEF\xBB\xBF"
         "a",
            "\xEF\xBB\xBF"
            "a"},
        {"\xFF\xFE"
         "a\0\xE9\0"s,
            "aé"},
        {"\xFF\xFE"s, ""},
        {"\xFE\xFF\0a\xD8\x3D\xDE\x00"s, "a😀"},
        {"\xFF\xFE\x3D\xD8\x00\xDE"s, "😀"},
        {"E\xE9 \x80\x81", "Eé €\xC2\x81"},
        {"\xEF\xBB\xBF\xE9", "ï»¿é"},
        {"\xFF\xFE"
         "a",
            "ÿþa"},
        {"\xFF\xFE\x00\xDC"s, "ÿþ\0Ü"s},
        {"\xFF\xFE\x3D\xD8"s, "ÿþ=Ø"},
        {"\xFE\xFF\xD8\x3D\0a"s, "þÿØ=\0a"s},
        {"a\0b\0"s, "a\0b\0"s},
        {"\xED\xA0\x80", "í\xC2\xA0€"},
        {"\xC0\x80", "À€"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(decodeText(row.bytes), row.text);
    const std::string ascii(200, 'a');
    EXPECT_EQ(decodeText(ascii + "é" + ascii), ascii + "é" + ascii);
    EXPECT_EQ(decodeText(ascii + "\xC3" + ascii), ascii + "Ã" + ascii);
}

TEST(DiskFileProvider, findsFilesWithoutRegardToCase) {
    const TemporaryFolder folder;
    folder.write("Sub/Vars.INC", "upper");
    folder.write("Sub/ÄB.inc", "umlaut");
    folder.write("exact/a.inc", "exact");
    folder.write("Exact/A.inc", "first");
    DiskFileProvider files;
    const auto read = [&](const std::string& path) { return files.contentsOfFile(folder.path() + "/" + path); };
    EXPECT_EQ(read("Sub/Vars.INC"), "upper");
    EXPECT_EQ(read("sUB/vars.inc"), "upper");
    EXPECT_EQ(read("sub/../SUB/./äb.INC"), "umlaut");
    EXPECT_EQ(read("exact/a.inc"), "exact");
    EXPECT_EQ(read("EXACT/a.inc"), "first") << "of two matches the first in byte order";
    EXPECT_TRUE(files.fileExists(folder.path() + "/SUB"));
    EXPECT_FALSE(files.fileExists(folder.path() + "/sub/none"));
    EXPECT_EQ(existingPath(folder.path() + "/SUB/vars.inc"), folder.path() + "/Sub/Vars.INC");
    EXPECT_EQ(existingPath(folder.path() + "/SUB/none"), folder.path() + "/SUB/none");
}

TEST(DiskFileProvider, cannotReadWhatIsNoFileOfABearableSize) {
    const TemporaryFolder folder;
    const auto file = folder.write("large", std::string(DiskFileProvider::MaxFileSize, 'x'));
    const auto pipe = folder.path() + "/pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    DiskFileProvider files;
    EXPECT_TRUE(files.contentsOfFile(file));
    folder.write("large", std::string(DiskFileProvider::MaxFileSize + 1, 'x'));
    for (const auto& path : {file, folder.path(), pipe, "/dev/zero"s, folder.path() + "/none", ""s, "\0"s,
             std::string(10000, '/'), std::string(100000, 'a')})
        EXPECT_FALSE(files.contentsOfFile(path)) << path.substr(0, 100);
    EXPECT_TRUE(files.fileExists(pipe));
    EXPECT_EQ(files.contentsOfFile("/proc/self/stat")->empty(), false) << "a file that tells no size";
}

TEST(InMemoryFileProvider, comparesPathsExactly) {
    InMemoryFileProvider files;
    files.addFile("/A", "1");
    files.addFile("/A", "2");
    EXPECT_EQ(files.contentsOfFile("/A"), "2");
    EXPECT_EQ(files.contentsOfFile("/a"), std::nullopt);
    EXPECT_TRUE(files.fileExists("/A"));
    EXPECT_FALSE(files.fileExists("/a"));
}

} // namespace Ostrel
