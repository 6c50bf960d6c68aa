#include "OstrelGUI/SingleInstance.h"

#include "Support/TemporaryFolder.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <future>
#include <thread>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Ostrel {
namespace {

using Role = SingleInstance::Role;
using testing::ElementsAre;

class SingleInstanceTest : public testing::Test {
protected:
    /// What another process's start comes to; it says nothing of our own, which holds the lock.
    std::future<Role> startElsewhere(std::vector<std::string> paths, const std::string& display = ":7") {
        return std::async(std::launch::async,
            [this, paths = std::move(paths), display] { return SingleInstance(folder.path(), display).start(paths); });
    }

    template <typename Result> Result awaited(std::future<Result>& result) {
        while (result.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        return result.get();
    }

    void listen(SingleInstance& first) {
        first.listen([this](const std::vector<std::string>& paths) {
            std::string all = "start";
            for (const auto& path : paths)
                all += " [" + path + "]";
            starts.push_back(all);
        });
    }

    TemporaryFolder folder;
    std::vector<std::string> starts;
};

TEST_F(SingleInstanceTest, laterStartsHandTheirPathsToTheFirst) {
    SingleInstance first(folder.path(), ":7");
    ASSERT_EQ(first.start({"/own.ini"}), Role::First);
    // It comes before the first listens, and waits.
    auto early = startElsewhere({"/a b.ini", "/\n\xff.ini", ""});
    listen(first);
    EXPECT_EQ(awaited(early), Role::HandedOver);
    auto bare = startElsewhere({});
    EXPECT_EQ(awaited(bare), Role::HandedOver);
    auto sameDisplay = startElsewhere({std::string(200'000, 'x')}, ":7.0");
    EXPECT_EQ(awaited(sameDisplay), Role::HandedOver);
    EXPECT_THAT(
        starts, ElementsAre("start [/a b.ini] [/\n\xff.ini] []", "start", "start [" + std::string(200'000, 'x') + "]"));

    auto otherDisplay = startElsewhere({}, ":8");
    EXPECT_EQ(awaited(otherDisplay), Role::First);
}

TEST_F(SingleInstanceTest, ofManyStartsAtOnceOneIsTheFirst) {
    constexpr int Count = 12;
    int pipes[2];
    ASSERT_EQ(pipe(pipes), 0);
    std::vector<pid_t> processes;
    for (int i = 0; i < Count; ++i) {
        const auto process = fork();
        if (process == 0) {
            SingleInstance instance(folder.path(), ":7");
            const char role = instance.start({"/" + std::to_string(i)}) == Role::First ? 'F' : 'o';
            [[maybe_unused]] const auto written = write(pipes[1], &role, 1);
            // The first does not answer; it only holds its place until all have tried.
            if (role == 'F')
                pause();
            _exit(0);
        }
        processes.push_back(process);
    }
    std::string roles(Count, '\0');
    for (char& role : roles)
        ASSERT_EQ(read(pipes[0], &role, 1), 1);
    EXPECT_EQ(std::ranges::count(roles, 'F'), 1) << roles;
    for (const auto process : processes) {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
    // The one that held it was killed and has left its socket.
    SingleInstance next(folder.path(), ":7");
    EXPECT_EQ(next.start({}), Role::First);
    listen(next);
    auto later = startElsewhere({"/x"});
    EXPECT_EQ(awaited(later), Role::HandedOver);
    EXPECT_THAT(starts, ElementsAre("start [/x]"));
}

TEST_F(SingleInstanceTest, doesNotWaitForEverOnOneThatHangs) {
    SingleInstance first(folder.path(), ":7");
    ASSERT_EQ(first.start({}), Role::First);
    QElapsedTimer elapsed;
    elapsed.start();
    auto later = startElsewhere({"/x"});
    EXPECT_EQ(later.get(), Role::Unanswered);
    EXPECT_LT(elapsed.elapsed(), 1000 * SingleInstance::PatienceSeconds + 2000);
}

TEST_F(SingleInstanceTest, aVisitorThatBreaksOffHarmsNothing) {
    SingleInstance first(folder.path(), ":7");
    ASSERT_EQ(first.start({}), Role::First);
    listen(first);
    std::string socketPath;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        if (entry.is_socket())
            socketPath = entry.path();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, socketPath.c_str(), sizeof address.sun_path - 1);
    std::vector<int> visitors;
    for (int i = 0; i < 40; ++i) {
        visitors.push_back(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0));
        connect(visitors.back(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
        send(visitors.back(), "/half a path", 12, MSG_NOSIGNAL);
        QCoreApplication::processEvents();
    }
    for (const int visitor : visitors)
        close(visitor);
    auto later = startElsewhere({"/x"});
    EXPECT_EQ(awaited(later), Role::HandedOver);
    EXPECT_THAT(starts, ElementsAre("start [/x]"));
    struct stat status { };
    ASSERT_EQ(stat(socketPath.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(SingleInstanceTest, trustsOnlyAFolderThatIsTheUsersOwn) {
    const auto temporary = folder.path() + "/tmp";
    std::filesystem::create_directory(temporary);
    const auto fallback = temporary + "/ostrel-" + std::to_string(geteuid());
    EXPECT_EQ(SingleInstance::privateFolder(folder.path(), temporary), folder.path());
    EXPECT_FALSE(std::filesystem::exists(fallback));
    EXPECT_EQ(SingleInstance::privateFolder("relative", temporary), fallback);
    EXPECT_EQ(SingleInstance::privateFolder(std::nullopt, temporary), fallback);
    struct stat status { };
    ASSERT_EQ(stat(fallback.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);

    // Somebody put theirs where ours would be.
    std::filesystem::remove(fallback);
    std::filesystem::create_directory_symlink(folder.path(), fallback);
    EXPECT_EQ(SingleInstance::privateFolder("/missing", temporary), std::nullopt);
    std::filesystem::remove(fallback);
    std::filesystem::create_directory(fallback);
    chmod(fallback.c_str(), 0777);
    EXPECT_EQ(SingleInstance::privateFolder(std::nullopt, temporary), std::nullopt);
}

} // namespace
} // namespace Ostrel
