#include "OstrelCore/Files/AtomicFile.h"

#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/mount.h>
#include <sys/resource.h>

namespace Ostrel {

namespace {

namespace fs = std::filesystem;

std::string bytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

std::size_t entryCount(const std::string& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

/// No file of this process may grow beyond `bytes` while this lives: a disk that is full.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        handlerBefore_ = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {bytes, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handlerBefore_);
    }

private:
    rlimit before_{};
    void (*handlerBefore_)(int) = nullptr;
};

} // namespace

TEST(AtomicFile, replacesContentsAndKeepsPermissions) {
    const TemporaryFolder folder;
    const auto path = folder.write("a.ini", "old and long");
    fs::permissions(path, fs::perms(0640));
    EXPECT_TRUE(writeFileAtomically(path, std::string_view("n\0w", 3)));
    EXPECT_EQ(bytesOf(path), std::string("n\0w", 3));
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640));
    EXPECT_TRUE(writeFileAtomically(folder.path() + "/made.ini", ""));
    EXPECT_TRUE(fs::exists(folder.path() + "/made.ini"));
    EXPECT_EQ(entryCount(folder.path()), 2U) << "nothing is left behind";
}

TEST(AtomicFile, writesThroughLinks) {
    const TemporaryFolder folder;
    const auto target = folder.write("real/target.ini", "old");
    const auto link = folder.path() + "/link.ini";
    fs::create_symlink("second.ini", link);
    fs::create_symlink("real/target.ini", folder.path() + "/second.ini");
    EXPECT_TRUE(writeFileAtomically(link, "new"));
    EXPECT_EQ(bytesOf(target), "new");
    EXPECT_TRUE(fs::is_symlink(link) && fs::is_symlink(folder.path() + "/second.ini"));

    fs::create_symlink("real/later.ini", folder.path() + "/dangling.ini");
    EXPECT_TRUE(writeFileAtomically(folder.path() + "/dangling.ini", "made"));
    EXPECT_EQ(bytesOf(folder.path() + "/real/later.ini"), "made");

    fs::create_symlink("loop.ini", folder.path() + "/loop.ini");
    EXPECT_FALSE(writeFileAtomically(folder.path() + "/loop.ini", "x"));
}

TEST(AtomicFile, refusesWhatIsNotToBeReplaced) {
    const TemporaryFolder folder;
    const auto readOnly = folder.write("readonly.ini", "old");
    fs::permissions(readOnly, fs::perms(0444));
    EXPECT_FALSE(writeFileAtomically(readOnly, "new"));
    EXPECT_EQ(bytesOf(readOnly), "old");
    EXPECT_FALSE(writeFileAtomically(folder.path(), "new"));
    EXPECT_FALSE(writeFileAtomically(folder.path() + "/missing/a.ini", "new"));
    EXPECT_FALSE(writeFileAtomically("/dev/null", "new"));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_FALSE(writeFileAtomically("", "new"));
}

TEST(AtomicFile, leavesTheOldBytesWhenTheDiskIsFull) {
    const TemporaryFolder folder;
    const auto path = folder.write("a.ini", "old");
    {
        const FileSizeLimit limit(4096);
        EXPECT_FALSE(writeFileAtomically(path, std::string(10000, 'x')));
    }
    EXPECT_EQ(bytesOf(path), "old");
    EXPECT_EQ(entryCount(folder.path()), 1U);
}

TEST(AtomicFile, leavesTheOldBytesOnASmallFullFileSystem) {
    const TemporaryFolder folder;
    if (::mount("tmpfs", folder.path().c_str(), "tmpfs", 0, "size=16k") != 0)
        GTEST_SKIP() << "mounting is not allowed here; the size limit above stands in for it";
    const auto path = folder.write("a.ini", "old");
    EXPECT_FALSE(writeFileAtomically(path, std::string(100000, 'x')));
    EXPECT_EQ(bytesOf(path), "old");
    EXPECT_EQ(entryCount(folder.path()), 1U);
    ::umount(folder.path().c_str());
}

} // namespace Ostrel
