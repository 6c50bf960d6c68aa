#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <string>

namespace Ostrel {

class HostStatistics;

/// Bytes of memory, or of swap space, in use.
class MemoryMeasure final : public BaseMeasure {
public:
    MemoryMeasure(const MeasureDefinition& definition, std::string skinPath, HostStatistics& host);

    void update() override;

private:
    HostStatistics& host_;
    bool isSwap_;
};

} // namespace Ostrel
