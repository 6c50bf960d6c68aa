#include "OstrelPlatform/Linux/Programs/LinuxProgramRunner.h"

#include "OstrelCore/Files/FileDescriptor.h"
#include "OstrelPlatform/MainQueue.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Ostrel {

namespace {

constexpr std::size_t MaxPrograms = 8;
/// Milliseconds that a pipe which a child holds open delays the end.
constexpr int LastOutput = 1000;

/// What programs need to find their files, their language and the desktop.
bool isHandedOn(std::string_view variable) {
    static constexpr std::array Names = {"PATH", "HOME", "USER", "LOGNAME", "LANG", "LANGUAGE", "TZ", "TMPDIR",
        "DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY", "DBUS_SESSION_BUS_ADDRESS"};
    const auto name = variable.substr(0, variable.find('='));
    if (name.starts_with("LC_") || name.starts_with("XDG_"))
        return true;
    for (const std::string_view known : Names) {
        if (name == known)
            return true;
    }
    return false;
}

std::vector<char*> reducedEnvironment() {
    std::vector<char*> kept;
    for (char** variable = environ; variable && *variable; ++variable) {
        if (isHandedOn(*variable))
            kept.push_back(*variable);
    }
    kept.push_back(nullptr);
    return kept;
}

class SpawnSettings {
public:
    SpawnSettings(const std::string& folder, int output) {
        posix_spawn_file_actions_init(&files_);
        posix_spawn_file_actions_addchdir_np(&files_, folder.c_str());
        posix_spawn_file_actions_addopen(&files_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&files_, output, STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&files_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addclosefrom_np(&files_, STDERR_FILENO + 1);
        posix_spawnattr_init(&state_);
        sigset_t signals;
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&state_, &signals);
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&state_, &signals);
        posix_spawnattr_setpgroup(&state_, 0);
        posix_spawnattr_setflags(&state_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETPGROUP);
    }
    ~SpawnSettings() {
        posix_spawnattr_destroy(&state_);
        posix_spawn_file_actions_destroy(&files_);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    /// 0 when the system cannot start it.
    pid_t start(const ProgramRequest& request) const {
        std::vector<char*> words{const_cast<char*>(request.program.c_str())};
        for (const auto& argument : request.arguments)
            words.push_back(const_cast<char*>(argument.c_str()));
        words.push_back(nullptr);
        auto environment = reducedEnvironment();
        pid_t process = 0;
        const int failed
            = posix_spawn(&process, request.program.c_str(), &files_, &state_, words.data(), environment.data());
        return failed == 0 ? process : 0;
    }

private:
    posix_spawn_file_actions_t files_;
    posix_spawnattr_t state_;
};

} // namespace

/// One program, its thread's and the main thread's.
struct LinuxProgramRunner::Run {
    pid_t process = 0;
    FileDescriptor output;
    FileDescriptor processEnd;
    /// Readable when the thread is to leave the program alone.
    FileDescriptor leave;
    std::size_t maxOutput = 0;
    std::atomic<bool> hasEnded = false;
    std::atomic<bool> isThreadDone = false;
    std::thread thread;
    /// Main thread.
    std::function<void(ProgramEnd)> onEnd;
    bool isReleased = false;

    bool signal(int number) const { return !hasEnded && ::kill(-process, number) == 0; }

    void leaveAlone() const {
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto written = ::write(leave.get(), &one, sizeof one);
    }

    /// False at the end of the output.
    bool readOutput(ProgramEnd& end) const {
        std::array<char, 65536> buffer;
        const auto size = ::read(output.get(), buffer.data(), buffer.size());
        if (size < 0 && (errno == EINTR || errno == EAGAIN))
            return true;
        if (size <= 0)
            return false;
        const auto room = maxOutput - end.output.size();
        end.output.append(buffer.data(), std::min(room, static_cast<std::size_t>(size)));
        if (static_cast<std::size_t>(size) > room && !std::exchange(end.wasOverfull, true))
            signal(SIGKILL);
        return true;
    }

    /// Until the program has ended and its output is read, or it is left alone. The thread.
    ProgramEnd wait() {
        ProgramEnd end;
        bool isOpen = true;
        bool isRunning = true;
        while (isRunning || isOpen) {
            std::array<pollfd, 3> files = {{{leave.get(), POLLIN, 0}, {isOpen ? output.get() : -1, POLLIN, 0},
                {isRunning ? processEnd.get() : -1, POLLIN, 0}}};
            const int ready = poll(files.data(), files.size(), isRunning ? -1 : LastOutput);
            if (files[0].revents || (ready == 0 && !isRunning))
                break;
            if (files[1].revents)
                isOpen = readOutput(end) && !end.wasOverfull;
            if (files[2].revents) {
                isRunning = false;
                // What is left of its group goes with it.
                ::kill(-process, SIGKILL);
                hasEnded = true;
                waitpid(process, nullptr, 0);
            }
        }
        return end;
    }
};

class LinuxProgramRunner::Handle final : public RunningProgram {
public:
    explicit Handle(std::shared_ptr<Run> run)
        : run_(std::move(run)) { }
    ~Handle() override {
        run_->onEnd = nullptr;
        if (!run_->isReleased)
            run_->signal(SIGKILL);
    }

    bool close() override { return run_->signal(SIGTERM); }
    bool kill() override { return run_->signal(SIGKILL); }
    void release() override {
        run_->isReleased = true;
        run_->onEnd = nullptr;
    }

private:
    std::shared_ptr<Run> run_;
};

LinuxProgramRunner::LinuxProgramRunner(MainQueue& queue)
    : queue_(queue) { }

LinuxProgramRunner::~LinuxProgramRunner() {
    for (const auto& run : runs_) {
        if (!run->isReleased)
            run->signal(SIGKILL);
        run->leaveAlone();
        run->thread.join();
        if (!run->isReleased && !run->hasEnded)
            waitpid(run->process, nullptr, 0);
        // Its number may be another's from now on.
        run->hasEnded = true;
    }
}

void LinuxProgramRunner::dropEnded() {
    std::erase_if(runs_, [](const auto& run) {
        if (!run->isThreadDone)
            return false;
        run->thread.join();
        return true;
    });
}

std::unique_ptr<RunningProgram> LinuxProgramRunner::start(
    const ProgramRequest& request, std::function<void(ProgramEnd)> onEnd) {
    dropEnded();
    std::array<int, 2> ends{};
    if (runs_.size() >= MaxPrograms || pipe2(ends.data(), O_CLOEXEC) != 0)
        return nullptr;
    auto run = std::make_shared<Run>();
    run->output = FileDescriptor(ends[0]);
    FileDescriptor input(ends[1]);
    run->leave = FileDescriptor(eventfd(0, EFD_CLOEXEC));
    run->maxOutput = request.maxOutput;
    run->onEnd = std::move(onEnd);
    run->process = SpawnSettings(request.folder, input.get()).start(request);
    if (run->process <= 0)
        return nullptr;
    run->processEnd = FileDescriptor(static_cast<int>(syscall(SYS_pidfd_open, run->process, 0)));
    input.reset();
    run->thread = std::thread([run, &queue = queue_] {
        auto end = run->wait();
        queue.post([run, end = std::move(end)]() mutable {
            if (const auto onEnd_ = std::exchange(run->onEnd, nullptr))
                onEnd_(std::move(end));
        });
        run->isThreadDone = true;
    });
    runs_.push_back(run);
    return std::make_unique<Handle>(std::move(run));
}

} // namespace Ostrel
