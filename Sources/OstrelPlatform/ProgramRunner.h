#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Ostrel {

/// What is started: a program at an absolute path, without a shell, in a process group of its own, with nothing to
/// read, a reduced environment and a bounded output.
struct ProgramRequest {
    std::string program;
    std::vector<std::string> arguments;
    /// The working folder.
    std::string folder;
    /// Bytes of standard output that are kept; a program that prints more has its group killed.
    std::size_t maxOutput = 1U << 20;
};

/// A program that ended.
struct ProgramEnd {
    std::string output;
    /// It was killed because it printed too much.
    bool wasOverfull = false;
};

/// A program that runs. Destroying it kills its group and drops the end. Main thread.
class RunningProgram {
public:
    virtual ~RunningProgram() = default;
    /// Asks the group to end. False when the system refuses.
    virtual bool close() = 0;
    virtual bool kill() = 0;
    /// It runs on without us, its end unheard.
    virtual void release() = 0;
};

/// Starts programs and hears their standard output. Main thread.
class ProgramRunner {
public:
    virtual ~ProgramRunner() = default;
    /// Null when the system cannot start it. `onEnd` runs once on the main thread, never at once, when the program has
    /// ended and its output is complete; a child that keeps the pipe open delays it by a second at most.
    virtual std::unique_ptr<RunningProgram> start(const ProgramRequest& request, std::function<void(ProgramEnd)> onEnd)
        = 0;
};

} // namespace Ostrel
