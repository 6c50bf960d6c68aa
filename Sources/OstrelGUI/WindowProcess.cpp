#include "OstrelGUI/WindowProcess.h"

#include "OstrelCore/Packages/SkinInput.h"
#include "OstrelCore/Text/Numbers.h"
#include "OstrelGUI/Channel/WindowServer.h"
#include "OstrelPlatform/MainQueue.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace Ostrel {

namespace {

namespace fs = std::filesystem;

/// Where the program finds its end of the channel; told as its argument.
constexpr int ChannelDescriptor = 3;

/// The process's number; below 0 when it cannot be started.
pid_t spawn(const std::string& program, int channel) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    // Also takes the mark off with which it would be closed.
    posix_spawn_file_actions_adddup2(&actions, channel, ChannelDescriptor);
    std::string name = program;
    std::string argument = formatInteger(ChannelDescriptor);
    char* const arguments[] = {name.data(), argument.data(), nullptr};
    pid_t process = -1;
    const int failure = posix_spawn(&process, program.c_str(), &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure)
        printMessage("cannot start " + program + ": " + std::strerror(failure));
    return failure ? -1 : process;
}

} // namespace

WindowProcess::WindowProcess(std::string program, WidgetLibrary& library, UserDefaults& defaults, MainQueue& mainQueue)
    : program_(std::move(program))
    , library_(library)
    , defaults_(defaults)
    , mainQueue_(mainQueue) { }

WindowProcess::~WindowProcess() {
    if (server_)
        server_->quit();
}

std::string WindowProcess::installedProgram() {
    std::error_code failed;
    const auto folder = fs::read_symlink("/proc/self/exe", failed).parent_path();
    const auto beside = folder / "ostrel-window";
    return fs::exists(beside, failed) ? beside : folder / "../libexec/ostrel/ostrel-window";
}

void WindowProcess::show() {
    if (auto* window = server()) {
        window->show();
        expect();
    }
}

void WindowProcess::open(std::span<const std::string> paths) {
    if (auto* window = server()) {
        window->open(paths);
        expect();
    }
}

void WindowProcess::scan(std::span<const std::string> paths) {
    if (isVisible_)
        server_->scan(paths);
}

WindowServer* WindowProcess::server() {
    return server_ || start() ? server_.get() : nullptr;
}

bool WindowProcess::start() {
    int ends[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return false;
    FileDescriptor ours(ends[0]);
    const FileDescriptor theirs(ends[1]);
    const auto process = spawn(program_, theirs.get());
    if (process < 0)
        return false;
    reapAtEnd(process);
    server_ = std::make_unique<WindowServer>(
        std::make_unique<WindowChannel>(std::move(ours)), library_, defaults_, mainQueue_);
    wasSeen_ = false;
    server_->onVisibilityChange = [this] {
        isAwaited_ = isAwaited_ && !server_->isWindowVisible();
        wasSeen_ = wasSeen_ || server_->isWindowVisible();
        // A wish may have crossed the news of the window's end.
        if (!isAwaited_)
            setVisible(server_->isWindowVisible());
    };
    server_->onSettingChange = [this](const std::string& key) {
        if (onSettingChange)
            onSettingChange(key);
    };
    server_->onEnd = [this] { didEnd(); };
    return true;
}

void WindowProcess::expect() {
    isAwaited_ = !server_->isWindowVisible();
    setVisible(true);
}

void WindowProcess::didEnd() {
    server_.reset();
    // It ended itself, not knowing that it was wanted again. A process that was never seen has failed.
    if (std::exchange(isAwaited_, false) && wasSeen_)
        return show();
    setVisible(false);
}

void WindowProcess::setVisible(bool isVisible) {
    if (std::exchange(isVisible_, isVisible) != isVisible && onVisibilityChange)
        onVisibilityChange();
}

void WindowProcess::reapAtEnd(int process) {
    const auto descriptor = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
    if (descriptor < 0)
        return;
    // Outlives this object: the process may end after it, but not after the application.
    auto* notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [notifier, descriptor, process] {
        notifier->setEnabled(false);
        waitpid(process, nullptr, WNOHANG);
        close(descriptor);
        notifier->deleteLater();
    });
}

} // namespace Ostrel
