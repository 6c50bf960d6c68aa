#pragma once

#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace Ostrel {

/// A program that was started, with its two outputs kept. Used by one thread.
class Task {
public:
    virtual ~Task() = default;
    virtual bool isRunning() = 0;
    /// Asks it to end; the second is the firmer word.
    virtual void terminate() = 0;
    virtual void interrupt() = 0;
    /// Its exit status. Blocks while it runs.
    virtual int waitUntilExit() = 0;
    /// All that it wrote, up to a bound. Only after its end.
    virtual std::string readStandardOutput() = 0;
    virtual std::string readStandardError() = 0;
};

/// Starts programs by their path, without a shell. Any thread.
class TaskLauncher {
public:
    struct Failure {
        /// For people.
        std::string description;
    };

    virtual ~TaskLauncher() = default;
    virtual std::variant<std::unique_ptr<Task>, Failure> launch(
        const std::string& executable, const std::vector<std::string>& arguments)
        = 0;
    /// Blocks the caller.
    virtual void sleep(double seconds) = 0;
};

} // namespace Ostrel
