#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"

namespace Ostrel {

/// A number that steps from `StartValue` to `EndValue` at each update and starts again. A last step that would pass the
/// end lands on it; a step of 0 or away from the end stays at the start.
class FullLoopMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override;
    bool executeCommand(std::string_view command) override;

private:
    struct Course {
        int start = 1;
        int end = 100;
        int step = 1;
        /// 0 without end.
        int rounds = 0;
        bool isMirrored = false;

        friend bool operator==(const Course&, const Course&) = default;
    };
    void restart();
    void step();

    Course course_;
    bool hasStarted_ = false;
    double current_ = 1;
    int roundsDone_ = 0;
};

} // namespace Ostrel
