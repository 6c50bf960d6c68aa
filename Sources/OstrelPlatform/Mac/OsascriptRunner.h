#pragma once

#include "OstrelPlatform/Log.h"

#include <optional>
#include <string>

namespace Ostrel {

class Clock;
class TaskLauncher;

/// Runs scripts with the system's own tool, each for a bounded time. Any thread; one script at a time.
class OsascriptRunner {
public:
    /// Seconds.
    static constexpr double osascriptTimeout = 1.5;

    /// All outlive the runner.
    OsascriptRunner(TaskLauncher& launcher, const Clock& clock, LogLine log);

    /// What the script printed, trimmed. Absent, which is told in the log, when it did not start, end in time or
    /// succeed. Blocks.
    std::optional<std::string> runOsascript(const std::string& script);

private:
    void logFailure(int status, const std::string& error);

    TaskLauncher& launcher_;
    const Clock& clock_;
    LogLine log_;
    bool hasLoggedPermissionHint_ = false;
};

} // namespace Ostrel
