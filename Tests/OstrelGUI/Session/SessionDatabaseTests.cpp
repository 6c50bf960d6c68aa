#include "OstrelGUI/Session/SessionDatabase.h"

#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <string>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Ostrel {
namespace {

/// Runs the work in a process of its own and gives how that ended.
int statusOf(const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0)
        _exit(work());
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

struct SessionDatabaseTest : testing::Test {
    TemporaryFolder folder;
    std::string path = folder.path() + "/new/session.db";
};

TEST_F(SessionDatabaseTest, keepsThePacksBetweenStarts) {
    const std::string odd("a'b\"\0\xff;", 7);
    {
        SessionDatabase database(path);
        EXPECT_TRUE(database.isStored());
        EXPECT_TRUE(database.setPack("/packs/A", "{}"));
        EXPECT_TRUE(database.setPack("/packs/A", R"({"dialect":"full"})"));
        EXPECT_TRUE(database.setPack(odd, odd));
        EXPECT_TRUE(database.setPack("/packs/B", ""));
        EXPECT_TRUE(database.setPack("/packs/C", "gone"));
        EXPECT_TRUE(database.removePack("/packs/C"));
    }
    const SessionDatabase database(path);
    EXPECT_EQ(database.pack("/packs/A"), R"({"dialect":"full"})");
    EXPECT_EQ(database.pack(odd), odd);
    EXPECT_EQ(database.pack("/packs/B"), "");
    EXPECT_EQ(database.pack("/packs/C"), std::nullopt);
    EXPECT_EQ(database.pack("/packs/a"), std::nullopt);
}

TEST_F(SessionDatabaseTest, losesNothingThatWasSetBeforeAKill) {
    const int status = statusOf([&] {
        SessionDatabase database(path);
        for (int i = 0; i <= 500; ++i)
            database.setPack("/p", std::to_string(i));
        return kill(getpid(), SIGKILL);
    });
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(SessionDatabase(path).pack("/p"), "500");
}

TEST_F(SessionDatabaseTest, keepsTheOldTextOnAFullDisk) {
    const int status = statusOf([&] {
        SessionDatabase database(path);
        database.setPack("/p", "old");
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{1 << 16, 1 << 16};
        setrlimit(RLIMIT_FSIZE, &limit);
        const bool isRefused = !database.setPack("/p", std::string(1 << 20, 'x'));
        return isRefused && database.pack("/p") == "old" && database.setPack("/q", "small") ? 0 : 1;
    });
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(SessionDatabase(path).pack("/p"), "old");
    EXPECT_EQ(SessionDatabase(path).pack("/q"), "small");
}

TEST_F(SessionDatabaseTest, movesAnUnreadableFileAside) {
    for (const char* aside : {"/new/session.db.bak", "/new/session.db.bak2"}) {
        folder.write("new/session.db", std::string(4096, 'x'));
        SessionDatabase database(path);
        EXPECT_TRUE(database.isStored());
        EXPECT_TRUE(database.setPack("/p", "new"));
        EXPECT_EQ(std::filesystem::file_size(folder.path() + aside), 4096U);
    }
}

TEST_F(SessionDatabaseTest, livesInMemoryWhereNothingCanBeStored) {
    folder.write("file", "");
    for (const auto& place : {std::optional(folder.path() + "/file/session.db"), std::optional<std::string>()}) {
        SessionDatabase database(place);
        EXPECT_FALSE(database.isStored());
        EXPECT_TRUE(database.setPack("/p", "{}"));
        EXPECT_EQ(database.pack("/p"), "{}");
    }
}

} // namespace
} // namespace Ostrel
