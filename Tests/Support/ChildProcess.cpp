#include "Support/ChildProcess.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace Ostrel {

namespace {

std::vector<std::string> merged(const ChildProcess::Environment& overlay) {
    std::vector<std::string> result;
    for (char** entry = environ; *entry; ++entry) {
        const std::string text = *entry;
        const auto name = text.substr(0, text.find('='));
        bool isReplaced = false;
        for (const auto& [key, value] : overlay)
            isReplaced = isReplaced || key == name;
        if (!isReplaced)
            result.push_back(text);
    }
    for (const auto& [key, value] : overlay)
        result.push_back(key + "=" + value);
    return result;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (auto& text : texts)
        result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command, const Environment& environment) {
    auto words = command;
    auto variables = merged(environment);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    if (posix_spawnp(
            &process_, words.front().c_str(), &actions, nullptr, pointers(words).data(), pointers(variables).data())
        != 0)
        process_ = 0;
    posix_spawn_file_actions_destroy(&actions);
}

ChildProcess::~ChildProcess() {
    if (process_ == 0)
        return;
    signal(SIGKILL);
    wait();
}

void ChildProcess::signal(int number) const {
    if (process_ > 0)
        kill(process_, number);
}

int ChildProcess::wait() {
    int status = -1;
    if (process_ == 0 || waitpid(std::exchange(process_, 0), &status, 0) < 0)
        return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool hasProgram(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::istringstream folders(path ? path : "");
    for (std::string folder; std::getline(folders, folder, ':');) {
        if (access((std::filesystem::path(folder) / name).c_str(), X_OK) == 0)
            return true;
    }
    return false;
}

} // namespace Ostrel
