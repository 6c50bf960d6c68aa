#include "OstrelPlatform/Mac/OsascriptRunner.h"
#include "OstrelPlatform/Mac/TaskLauncher.h"
#include "Support/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace Ostrel {
namespace {

using testing::ElementsAre;

/// What the next program does.
struct Program {
    double seconds = 0;
    int status = 0;
    std::string output = {};
    std::string error = {};
    bool ignoresTermination = false;
};

/// A machine whose programs take their time on the test's clock.
class FakeLauncher final : public TaskLauncher {
public:
    explicit FakeLauncher(FakeClock& clock)
        : clock_(clock) { }

    std::variant<std::unique_ptr<Task>, Failure> launch(
        const std::string& executable, const std::vector<std::string>& arguments) override {
        calls.push_back(executable);
        calls.insert(calls.end(), arguments.begin(), arguments.end());
        if (failure)
            return Failure{*failure};
        return std::make_unique<FakeTask>(*this);
    }
    void sleep(double seconds) override { clock_.uptime += seconds; }

    Program program;
    std::optional<std::string> failure;
    std::vector<std::string> calls;

private:
    class FakeTask final : public Task {
    public:
        explicit FakeTask(FakeLauncher& launcher)
            : launcher_(launcher)
            , end_(launcher.clock_.uptime + launcher.program.seconds) { }
        bool isRunning() override { return launcher_.clock_.uptime < end_; }
        void terminate() override {
            launcher_.calls.emplace_back("terminate");
            if (!launcher_.program.ignoresTermination)
                end_ = 0;
        }
        void interrupt() override { launcher_.calls.emplace_back("interrupt"); }
        int waitUntilExit() override { return launcher_.program.status; }
        std::string readStandardOutput() override { return launcher_.program.output; }
        std::string readStandardError() override { return launcher_.program.error; }

    private:
        FakeLauncher& launcher_;
        double end_;
    };

    FakeClock& clock_;
};

struct OsascriptRunnerTests : testing::Test {
    std::optional<std::string> run(Program program) {
        launcher.program = std::move(program);
        launcher.calls.clear();
        log.clear();
        return runner.runOsascript("the script");
    }

    FakeClock clock;
    FakeLauncher launcher{clock};
    std::vector<std::string> log;
    OsascriptRunner runner{launcher, clock, [this](std::string_view line) { log.emplace_back(line); }};
};

TEST_F(OsascriptRunnerTests, givesWhatAScriptPrints) {
    EXPECT_EQ(run({.seconds = 1.4, .output = "\n STOPPED \r\n"}), "STOPPED");
    EXPECT_THAT(launcher.calls, ElementsAre("/usr/bin/osascript", "-e", "the script"));
    EXPECT_EQ(run({.output = ""}), "");
    EXPECT_EQ(run({.output = "\xff"}), std::nullopt);
    EXPECT_TRUE(log.empty());
}

TEST_F(OsascriptRunnerTests, endsAScriptThatHangs) {
    clock.uptime = 100;
    EXPECT_EQ(run({.seconds = 60, .output = "late"}), std::nullopt);
    EXPECT_NEAR(clock.uptime, 101.5, 0.05);
    EXPECT_THAT(launcher.calls, ElementsAre("/usr/bin/osascript", "-e", "the script", "terminate"));
    EXPECT_THAT(log, ElementsAre("[NowPlaying] osascript timed out after 1.50s."));
    run({.seconds = 60, .ignoresTermination = true});
    EXPECT_EQ(launcher.calls.back(), "interrupt");
}

TEST_F(OsascriptRunnerTests, tellsWhatFailed) {
    EXPECT_EQ(run({.status = 1, .output = "x", .error = "no such thing"}), std::nullopt);
    EXPECT_THAT(log, ElementsAre("[NowPlaying] osascript error (exit 1): no such thing"));
    EXPECT_EQ(run({.status = -9, .error = "\xff"}), std::nullopt);
    EXPECT_THAT(log, ElementsAre("[NowPlaying] osascript error (exit -9): "));
    run({.status = 1, .error = "Not Authorized to send Apple events"});
    EXPECT_THAT(log,
        ElementsAre("[NowPlaying] osascript error (exit 1): Not Authorized to send Apple events",
            "[NowPlaying] ⚠️ Automation permission denied. Go to System Settings > Privacy & Security > Automation "
            "and "
            "allow this app to control music players (Spotify / Music)."));
    run({.status = 1, .error = "not authorized"});
    EXPECT_EQ(log.size(), 1U) << "the hint comes once";
    launcher.failure = "no such file";
    EXPECT_EQ(run({}), std::nullopt);
    EXPECT_THAT(log, ElementsAre("[NowPlaying] osascript launch failed: no such file"));
}

} // namespace
} // namespace Ostrel
