#pragma once

#include "OstrelPlatform/FontRegistrar.h"
#include "OstrelPlatform/HostDetails.h"
#include "OstrelPlatform/HostStatistics.h"
#include "OstrelPlatform/Platform.h"
#include "OstrelPlatform/RemoteReader.h"
#include "OstrelPlatform/VirtualTime.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

/// Details that a test sets; a machine with nothing at first.
class FakeHostDetails final : public HostDetails {
public:
    std::vector<NetworkInterface> interfaces;
    std::map<std::string, AdapterFacts> adapters;
    ProcessSamples samples;
    int threads = 0;
    std::vector<DiskActivity> diskActivity;
    std::vector<Sensor> sensorList;
    PowerFigures powerFigures;
    std::map<std::string, Volume> volumes;
    std::map<MachineFact, std::string> facts;

    const std::vector<NetworkInterface>& networkInterfaces() override { return interfaces; }
    AdapterFacts adapter(const std::string& name) override { return adapters[name]; }
    double wirelessQuality(const std::string&) override { return 50; }
    const ProcessSamples& processes() override { return samples; }
    int threadCount() override { return threads; }
    const std::vector<DiskActivity>& disks() override { return diskActivity; }
    const std::vector<Sensor>& sensors() override { return sensorList; }
    PowerFigures power() override { return powerFigures; }
    Volume volume(const std::string& drive) override { return volumes[drive]; }
    std::string diskOf(const std::string& drive) override { return drive == "C:" ? "sda1" : ""; }
    std::string fact(MachineFact fact) override { return facts[fact]; }
};

/// Figures that a test sets; absent at first, as if every read failed.
class FakeHostStatistics : public HostStatistics {
public:
    std::optional<CPUTicks> cpu;
    std::optional<MemoryFigures> memory;
    std::optional<MemoryFigures> swapSpace;
    std::map<std::string, FileSystemFigures> fileSystems;
    std::optional<NetworkBytes> network;
    std::vector<ProcessorTimes> processorTimes;
    FakeHostDetails hostDetails;

    void beginWake() override { }
    std::optional<CPUTicks> cpuTicks() override { return cpu; }
    std::optional<MemoryFigures> physicalMemory() override { return memory; }
    std::optional<MemoryFigures> swap() override { return swapSpace; }
    std::optional<NetworkBytes> networkBytes() override { return network; }
    const std::vector<ProcessorTimes>& processors() override { return processorTimes; }
    HostDetails* details() override { return &hostDetails; }
    std::optional<FileSystemFigures> fileSystem(const std::string& path) override {
        const auto found = fileSystems.find(path);
        return found == fileSystems.end() ? std::nullopt : std::optional(found->second);
    }
};

/// A clock that a test sets.
class FakeClock final : public Clock {
public:
    double uptime = 0;
    double wall = 0;

    double uptimeSeconds() const override { return uptime; }
    double wallSeconds() const override { return wall; }
};

/// A platform on which nothing happens but what a test says.
struct FakePlatform {
    class Fonts final : public FontRegistrar {
        void registerFontFile(const std::string&) override { }
    };
    class Network final : public RemoteReader {
        std::optional<std::string> read(const std::string&) override { return std::nullopt; }
    };

    FakeClock clock;
    VirtualTime queue;
    FakeHostStatistics host;
    Fonts fonts;
    Network network;
    Platform platform{clock, queue, host, fonts, network};
};

} // namespace Ostrel
