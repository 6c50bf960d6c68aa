#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"

namespace Ostrel {

/// Stands for what this system does not have: 0 and the empty text, every option and command accepted.
class FullStubMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override { publishText("", 0); }
    bool executeCommand(std::string_view) override { return true; }
};

/// Stands for a question whose answer is always no: -1 and the empty text.
class FullAbsentMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override { publishText("", -1); }
};

} // namespace Ostrel
