#pragma once

#include "OstrelPlatform/Clock.h"

namespace Ostrel {

/// The kernel's clocks. Uptime does not run while the machine sleeps.
class LinuxClock final : public Clock {
public:
    double uptimeSeconds() const override;
    double wallSeconds() const override;
};

} // namespace Ostrel
