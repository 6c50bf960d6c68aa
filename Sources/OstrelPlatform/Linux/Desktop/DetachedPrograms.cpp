#include "OstrelPlatform/Linux/Desktop/DetachedPrograms.h"

#include "OstrelCore/Files/FileDescriptor.h"

#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <optional>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Ostrel {

namespace {

/// The files and the state that a program begins with.
class SpawnSettings {
public:
    SpawnSettings() {
        posix_spawn_file_actions_init(&files_);
        posix_spawn_file_actions_addopen(&files_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&files_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        // Libraries do not all mark their files to be closed.
        posix_spawn_file_actions_addclosefrom_np(&files_, STDERR_FILENO + 1);
        posix_spawnattr_init(&state_);
        sigset_t handled;
        sigfillset(&handled);
        posix_spawnattr_setsigdefault(&state_, &handled);
        sigemptyset(&handled);
        posix_spawnattr_setsigmask(&state_, &handled);
        posix_spawnattr_setflags(&state_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSID);
    }
    ~SpawnSettings() {
        posix_spawnattr_destroy(&state_);
        posix_spawn_file_actions_destroy(&files_);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    std::optional<pid_t> start(const std::string& program, const std::vector<std::string>& arguments) const {
        std::vector<char*> words{const_cast<char*>(program.c_str())};
        for (const auto& argument : arguments)
            words.push_back(const_cast<char*>(argument.c_str()));
        words.push_back(nullptr);
        pid_t process = 0;
        const bool hasStarted = posix_spawn(&process, program.c_str(), &files_, &state_, words.data(), environ) == 0;
        return hasStarted ? std::optional(process) : std::nullopt;
    }

private:
    posix_spawn_file_actions_t files_;
    posix_spawnattr_t state_;
};

/// A descriptor that becomes readable when the process ends; false on kernels without.
FileDescriptor processDescriptor(pid_t process) {
    return FileDescriptor(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
}

} // namespace

/// One process until its end. No signal handler, for that would be the whole program's, and no thread that waits.
class DetachedPrograms::Watch {
public:
    Watch(pid_t process, FileDescriptor descriptor)
        : process_(process)
        , descriptor_(std::move(descriptor))
        , end_(descriptor_.get(), QSocketNotifier::Read) {
        QObject::connect(&end_, &QSocketNotifier::activated, &end_, [this] { reap(); });
    }

    bool isOver() const { return isOver_; }

private:
    void reap() {
        isOver_ = waitpid(process_, nullptr, WNOHANG) != 0;
        end_.setEnabled(!isOver_);
    }

    pid_t process_;
    FileDescriptor descriptor_;
    QSocketNotifier end_;
    bool isOver_ = false;
};

DetachedPrograms::DetachedPrograms() = default;
DetachedPrograms::~DetachedPrograms() = default;

bool DetachedPrograms::launch(const std::string& program, const std::vector<std::string>& arguments) {
    const auto process = SpawnSettings().start(program, arguments);
    if (process)
        reapInTime(*process);
    return process.has_value();
}

void DetachedPrograms::reapInTime(pid_t process) {
    std::erase_if(watches_, [](const auto& watch) { return watch->isOver(); });
    if (auto descriptor = processDescriptor(process))
        watches_.push_back(std::make_unique<Watch>(process, std::move(descriptor)));
    else
        std::thread([process] { waitpid(process, nullptr, 0); }).detach();
}

} // namespace Ostrel
