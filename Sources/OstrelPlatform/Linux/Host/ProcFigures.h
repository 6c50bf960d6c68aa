#pragma once

#include "OstrelPlatform/HostStatistics.h"

#include <optional>
#include <string_view>
#include <vector>

/// What the texts of /proc say. A line that makes no sense is as if it were missing.
namespace Ostrel::ProcFigures {

/// /proc/stat, of which the first line is enough; absent when that is not the sum over all processors.
std::optional<CPUTicks> parseStat(std::string_view text);

/// All of /proc/stat that is about processors; empty when the sum over all of them is missing.
std::vector<ProcessorTimes> parseProcessors(std::string_view text);

struct Memory {
    std::optional<MemoryFigures> physical;
    std::optional<MemoryFigures> swap;

    friend bool operator==(const Memory&, const Memory&) = default;
};
/// /proc/meminfo.
Memory parseMeminfo(std::string_view text);

/// /proc/net/dev, all interfaces but loopback together.
NetworkBytes parseNetDev(std::string_view text);

} // namespace Ostrel::ProcFigures
