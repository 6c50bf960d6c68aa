#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelPlatform/ProgramRunner.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// Starts a program by command and shows what it printed when it has ended. Its number tells how it went: -1 never run,
/// 0 running, 1 done, above 99 what failed.
class FullRunCommandMeasure final : public FullMeasure {
public:
    FullRunCommandMeasure(const MeasureDefinition& definition, FullMeasureHost& host);
    ~FullRunCommandMeasure() override;

    void update() override;
    bool executeCommand(std::string_view command) override;

private:
    struct CommandLine {
        std::string program;
        std::vector<std::string> arguments;
        /// As the user is asked.
        std::string shown;
    };

    void run();
    void end(bool byForce);
    void startTimeout();
    /// Absent, with the reason in the log, for what cannot run here.
    std::optional<CommandLine> commandLine() const;
    std::optional<std::string> programFile(std::string_view program) const;
    std::string folder() const;
    bool save(std::string_view text) const;
    void finish(const ProgramEnd& end);
    void show(int status);

    std::unique_ptr<RunningProgram> program_;
    bool wasHidden_ = true;
    int runs_ = 0;
    std::string text_;
    int status_ = -1;
    /// What waits for later asks whether the measure is still there.
    std::shared_ptr<int> life_ = std::make_shared<int>();
};

} // namespace Ostrel
