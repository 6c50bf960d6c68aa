#pragma once

#include "OstrelPlatform/HostStatistics.h"
#include "OstrelPlatform/Linux/Host/LinuxHostDetails.h"
#include "OstrelPlatform/Linux/Host/ProcFigures.h"
#include "OstrelPlatform/Linux/Host/ProcFile.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

/// Figures of the running kernel.
class LinuxHostStatistics final : public HostStatistics {
public:
    explicit LinuxHostStatistics(const std::string& procFolder = "/proc");

    void beginWake() override;
    HostDetails* details() override { return &details_; }
    std::optional<CPUTicks> cpuTicks() override;
    std::optional<MemoryFigures> physicalMemory() override { return memory().physical; }
    std::optional<MemoryFigures> swap() override { return memory().swap; }
    std::optional<FileSystemFigures> fileSystem(const std::string& path) override;
    std::optional<NetworkBytes> networkBytes() override;
    const std::vector<ProcessorTimes>& processors() override;

private:
    /// What a source said, and in which wake.
    template <typename Value> struct Sample {
        Value value{};
        std::uint64_t wake = 0;
    };

    template <typename Value, typename Read> const Value& sampled(Sample<Value>& sample, Read read);
    const ProcFigures::Memory& memory();

    LinuxHostDetails details_;
    /// Above that of a sample never taken.
    std::uint64_t wake_ = 1;
    ProcFile statFile_;
    ProcFile meminfoFile_;
    ProcFile netDevFile_;
    Sample<std::optional<CPUTicks>> cpu_;
    Sample<std::vector<ProcessorTimes>> processors_;
    Sample<ProcFigures::Memory> memory_;
    Sample<std::optional<NetworkBytes>> network_;
    /// As many as the skins name paths.
    std::map<std::string, Sample<std::optional<FileSystemFigures>>> fileSystems_;
};

} // namespace Ostrel
