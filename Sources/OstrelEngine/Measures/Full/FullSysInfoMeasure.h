#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"

#include <string>
#include <string_view>

namespace Ostrel {

/// One fact about the system, its ways to the network, its screens or its time zone, chosen by `SysInfoType`.
class FullSysInfoMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override;

private:
    bool publishFact();
    bool publishAdapter();
    bool publishScreen();
    bool publishTimeZone();
    /// The number that a built-in variable has now.
    double variable(std::string_view name) const;

    /// In upper case.
    std::string type_;
    std::string data_;
};

} // namespace Ostrel
