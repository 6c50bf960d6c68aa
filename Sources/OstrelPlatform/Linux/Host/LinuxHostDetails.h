#pragma once

#include "OstrelPlatform/HostDetails.h"
#include "OstrelPlatform/Linux/Host/LinuxVolumes.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

/// Details of the running kernel and of the files below `root`.
class LinuxHostDetails final : public HostDetails {
public:
    explicit LinuxHostDetails(std::string root = {});

    void beginWake() { ++wake_; }
    const std::vector<NetworkInterface>& networkInterfaces() override;
    AdapterFacts adapter(const std::string& interface) override;
    double wirelessQuality(const std::string& interface) override;
    const ProcessSamples& processes() override;
    int threadCount() override;
    const std::vector<DiskActivity>& disks() override;
    const std::vector<Sensor>& sensors() override;
    PowerFigures power() override;
    Volume volume(const std::string& drive) override;
    std::string diskOf(const std::string& drive) override { return volumes_.diskOf(drive); }
    std::string fact(MachineFact fact) override;

private:
    /// What a source said, in which wake and when.
    template <typename Value> struct Sample {
        Value value{};
        std::uint64_t wake = 0;
        double time = 0;
    };
    enum class Age { Wake, Second };

    template <typename Value, typename Read> const Value& sampled(Sample<Value>& sample, Age age, Read read);
    /// The beginning of a file below the root; empty when it cannot be read.
    std::string read(const std::string& path, std::size_t maximumBytes = 16 << 10) const;
    std::string line(const std::string& path) const;
    std::optional<double> number(const std::string& path) const;
    std::vector<std::string> names(const std::string& folder) const;

    std::vector<NetworkInterface> readInterfaces() const;
    ProcessSamples readProcesses() const;
    std::vector<Sensor> readSensors() const;
    PowerFigures readPower() const;
    std::string readFact(MachineFact fact) const;
    std::string readProcessorFact(MachineFact fact) const;

    std::string root_;
    /// Above that of a sample never taken.
    std::uint64_t wake_ = 1;
    LinuxVolumes volumes_;
    Sample<std::vector<NetworkInterface>> interfaces_;
    Sample<ProcessSamples> processes_;
    Sample<std::vector<DiskActivity>> disks_;
    Sample<std::vector<Sensor>> sensors_;
    Sample<PowerFigures> power_;
    std::map<std::string, Sample<Volume>> volumeSamples_;
    std::map<MachineFact, std::string> facts_;
};

} // namespace Ostrel
