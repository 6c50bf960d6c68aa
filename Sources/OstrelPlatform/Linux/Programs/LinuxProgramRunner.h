#pragma once

#include "OstrelPlatform/ProgramRunner.h"

#include <functional>
#include <memory>
#include <vector>

namespace Ostrel {

class MainQueue;

/// At most 8 programs at a time. Each is in a process group of its own with little of our environment; a thread waits
/// for its output and its end.
class LinuxProgramRunner final : public ProgramRunner {
public:
    /// `queue` outlives the runner.
    explicit LinuxProgramRunner(MainQueue& queue);
    /// Ends what still runs and was not released.
    ~LinuxProgramRunner() override;

    std::unique_ptr<RunningProgram> start(
        const ProgramRequest& request, std::function<void(ProgramEnd)> onEnd) override;

private:
    struct Run;
    class Handle;

    void dropEnded();

    MainQueue& queue_;
    std::vector<std::shared_ptr<Run>> runs_;
};

} // namespace Ostrel
