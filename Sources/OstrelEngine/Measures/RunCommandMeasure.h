#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <string>
#include <string_view>

namespace Ostrel {

class Workspace;

/// Starts a program or opens a URL on command, and shows how that went: 1, or one of the words UNSUPPORTED_EXECUTABLE
/// (a Windows program), NOT_FOUND and LAUNCH_FAILED.
class RunCommandMeasure final : public BaseMeasure {
public:
    RunCommandMeasure(const MeasureDefinition& definition, std::string skinPath, const Platform& platform);

    bool executeCommand(std::string_view text) override;

private:
    void run(std::string_view program);
    std::string resolvePath(std::string_view program) const;
    void publishSuccess() { publish(1, "1", false, 0, 1); }
    void publishFailure(std::string_view word) { publish(0, word, true, 0, 0); }

    /// Null where nothing can be started.
    Workspace* workspace_;
};

} // namespace Ostrel
