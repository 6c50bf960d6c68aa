#include "OstrelPlatform/Linux/Desktop/DetachedPrograms.h"

#include "Support/EventLoop.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Ostrel {
namespace {

namespace fs = std::filesystem;

/// Neither running nor waiting to be reaped.
bool hasNoChild() {
    siginfo_t info;
    return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) < 0 && errno == ECHILD;
}

std::string script(const TemporaryFolder& folder, std::string_view name, std::string_view text) {
    const auto path = folder.write(name, text);
    fs::permissions(path, fs::perms::owner_all);
    return path;
}

/// Whether a mask as the kernel prints it, 16 hexadecimal digits, has the signal.
bool holds(const std::string& mask, int signal) {
    EXPECT_EQ(mask.size(), 16U);
    return std::stoull(mask, nullptr, 16) >> (signal - 1) & 1;
}

std::map<std::string, std::string> readReport(const std::string& path) {
    std::map<std::string, std::string> report;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
        report[line.substr(0, line.find('='))] = line.substr(line.find('=') + 1);
    return report;
}

} // namespace

TEST(DetachedPrograms, givesAProgramAStateOfItsOwn) {
    const TemporaryFolder folder;
    const auto reporter = script(folder, "report", R"sh(#!/bin/bash
OUTPUT=$(readlink /proc/$$/fd/1)
for word in "$@"; do words+="<$word>"; done
{
    echo "words=$words"
    echo "folder=$PWD"
    echo "session=$(cut -d' ' -f6 /proc/$$/stat)"
    echo "process=$$"
    echo "input=$(readlink /proc/$$/fd/0)"
    echo "output=$OUTPUT"
    echo "errors=$(readlink /proc/$$/fd/2)"
    [ -e /proc/$$/fd/$LEAK ] && echo leaked=yes
    # Read by the shell itself: while it starts another program it blocks signals.
    while IFS=$'\t' read -r key value; do
        case $key in Sig[BI]*) echo "${key%:}=$value" ;; esac
    done < /proc/self/status
} > "$0.out"
)sh");
    // A number that the shell does not use for itself.
    const int zero = open("/dev/zero", O_RDONLY);
    const int leak = fcntl(zero, F_DUPFD, 100);
    close(zero);
    setenv("LEAK", std::to_string(leak).c_str(), 1);
    sigset_t blocked, before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    sigprocmask(SIG_BLOCK, &blocked, &before);
    const auto oldAction = std::signal(SIGPIPE, SIG_IGN);

    DetachedPrograms programs;
    EXPECT_TRUE(programs.launch(reporter, {"a b", "", "$HOME", "\xC3\xA9"}));
    std::signal(SIGPIPE, oldAction);
    sigprocmask(SIG_SETMASK, &before, nullptr);
    close(leak);
    EXPECT_TRUE(runLoopUntil(hasNoChild)) << "it is not reaped";

    auto report = readReport(reporter + ".out");
    EXPECT_EQ(report["words"], "<a b><><$HOME><\xC3\xA9>");
    EXPECT_EQ(report["folder"], fs::current_path());
    EXPECT_EQ(report["session"], report["process"]);
    EXPECT_EQ(report["input"], "/dev/null");
    EXPECT_EQ(report["output"], "/dev/null");
    EXPECT_EQ(report["errors"], fs::read_symlink("/proc/self/fd/2"));
    EXPECT_FALSE(holds(report["SigBlk"], SIGTERM));
    EXPECT_FALSE(holds(report["SigIgn"], SIGPIPE));
    EXPECT_FALSE(report.contains("leaked"));
}

TEST(DetachedPrograms, leavesNoZombieBehindWhicheverEndsFirst) {
    const TemporaryFolder folder;
    const auto waiting = script(folder, "waiting", "#!/bin/sh\nread line < \"$0.go\"\n");
    ASSERT_EQ(mkfifo((waiting + ".go").c_str(), 0600), 0);
    DetachedPrograms programs;
    EXPECT_TRUE(programs.launch(waiting, {}));
    for (int i = 0; i < 20; ++i)
        EXPECT_TRUE(programs.launch("/bin/true", {}));
    const int go = open((waiting + ".go").c_str(), O_WRONLY);
    close(go);
    EXPECT_TRUE(runLoopUntil(hasNoChild));
    const auto descriptors = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); };
    const auto before = descriptors();
    EXPECT_TRUE(programs.launch("/bin/true", {}));
    EXPECT_LT(descriptors(), before) << "what is over is let go of";
    EXPECT_TRUE(runLoopUntil(hasNoChild));
}

TEST(DetachedPrograms, refusesWhatCannotBeExecuted) {
    const TemporaryFolder folder;
    const std::string paths[] = {folder.path(), folder.write("plain", "#!/bin/sh\n"), folder.path() + "/missing",
        script(folder, "no-first-line", "echo hello\n"), script(folder, "no-interpreter", "#!/no/such/shell\n"),
        script(folder, "empty", "")};
    DetachedPrograms programs;
    for (const auto& path : paths)
        EXPECT_FALSE(programs.launch(path, {})) << path;
    EXPECT_TRUE(hasNoChild());
}

} // namespace Ostrel
