#include "OstrelPlatform/Mac/OsascriptRunner.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/Clock.h"
#include "OstrelPlatform/Mac/TaskLauncher.h"

#include <memory>
#include <utility>

namespace Ostrel {

namespace {

constexpr double CheckInterval = 0.01;
constexpr double GraceSeconds = 0.02;

constexpr std::string_view PermissionHint = "[NowPlaying] ⚠️ Automation permission denied. Go to System Settings > "
                                            "Privacy & Security > Automation and allow "
                                            "this app to control music players (Spotify / Music).";

} // namespace

OsascriptRunner::OsascriptRunner(TaskLauncher& launcher, const Clock& clock, LogLine log)
    : launcher_(launcher)
    , clock_(clock)
    , log_(std::move(log)) { }

std::optional<std::string> OsascriptRunner::runOsascript(const std::string& script) {
    auto launched = launcher_.launch("/usr/bin/osascript", {"-e", script});
    if (const auto* failure = std::get_if<TaskLauncher::Failure>(&launched)) {
        log_("[NowPlaying] osascript launch failed: " + failure->description);
        return std::nullopt;
    }
    auto& task = *std::get<std::unique_ptr<Task>>(launched);
    const double deadline = clock_.uptimeSeconds() + osascriptTimeout;
    while (task.isRunning() && clock_.uptimeSeconds() < deadline)
        launcher_.sleep(CheckInterval);
    if (task.isRunning()) {
        task.terminate();
        launcher_.sleep(GraceSeconds);
        if (task.isRunning())
            task.interrupt();
        log_("[NowPlaying] osascript timed out after " + formatFixed(osascriptTimeout, 2) + "s.");
        return std::nullopt;
    }
    const int status = task.waitUntilExit();
    const auto output = task.readStandardOutput();
    const auto error = task.readStandardError();
    if (status != 0) {
        logFailure(status, isValidUTF8(error) ? error : std::string());
        return std::nullopt;
    }
    return isValidUTF8(output) ? std::optional(std::string(trimmed(output))) : std::nullopt;
}

void OsascriptRunner::logFailure(int status, const std::string& error) {
    log_("[NowPlaying] osascript error (exit " + formatInteger(status) + "): " + error);
    if (!hasLoggedPermissionHint_ && containsIgnoringCase(error, "NOT AUTHORIZED")) {
        hasLoggedPermissionHint_ = true;
        log_(PermissionHint);
    }
}

} // namespace Ostrel
