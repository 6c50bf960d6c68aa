#pragma once

#include "OstrelPlatform/FontRegistrar.h"
#include "OstrelPlatform/HostStatistics.h"
#include "OstrelPlatform/Platform.h"
#include "OstrelPlatform/RemoteReader.h"
#include "OstrelPlatform/VirtualTime.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

/// Figures that a test sets; absent at first, as if every read failed.
class FakeHostStatistics : public HostStatistics {
public:
    std::optional<CPUTicks> cpu;
    std::optional<MemoryFigures> memory;
    std::optional<MemoryFigures> swapSpace;
    std::map<std::string, FileSystemFigures> fileSystems;
    std::optional<NetworkBytes> network;
    std::vector<ProcessorTimes> processorTimes;

    void beginWake() override { }
    std::optional<CPUTicks> cpuTicks() override { return cpu; }
    std::optional<MemoryFigures> physicalMemory() override { return memory; }
    std::optional<MemoryFigures> swap() override { return swapSpace; }
    std::optional<NetworkBytes> networkBytes() override { return network; }
    const std::vector<ProcessorTimes>& processors() override { return processorTimes; }
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
