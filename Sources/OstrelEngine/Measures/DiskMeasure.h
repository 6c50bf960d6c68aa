#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <string>

namespace Ostrel {

class HostStatistics;

/// Bytes of a file system: free, used or all. Its options are read once, when it is made.
class DiskMeasure final : public BaseMeasure {
public:
    DiskMeasure(const MeasureDefinition& definition, std::string skinPath, HostStatistics& host);

    void update() override;

private:
    HostStatistics& host_;
    std::string drivePath_;
    bool isTotal_;
    bool isInverted_;
};

} // namespace Ostrel
