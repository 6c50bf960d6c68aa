#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"

namespace Ostrel {

/// The output that the machine plays on, its volume, and commands for both. -1 while it is muted.
class FullWin7AudioMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override;
    bool executeCommand(std::string_view command) override;
};

/// Does on command what the media keys of a keyboard do.
class FullMediaKeyMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override { publishText("", 0); }
    bool executeCommand(std::string_view command) override;
};

} // namespace Ostrel
