#pragma once

#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace Ostrel {

/// A program that a test runs beside itself, without output; ended with its owner.
class ChildProcess {
public:
    using Environment = std::vector<std::pair<std::string, std::string>>;

    /// The first word is looked for in PATH. `environment` is laid over the test's own.
    explicit ChildProcess(const std::vector<std::string>& command, const Environment& environment = {});
    ~ChildProcess();
    ChildProcess(ChildProcess&& other) noexcept
        : process_(std::exchange(other.process_, 0)) { }
    ChildProcess& operator=(ChildProcess&&) = delete;

    void signal(int number) const;
    /// Its exit status; -1 when it could not start or was killed.
    int wait();

private:
    pid_t process_ = 0;
};

/// Whether PATH has such a program.
bool hasProgram(const std::string& name);

} // namespace Ostrel
