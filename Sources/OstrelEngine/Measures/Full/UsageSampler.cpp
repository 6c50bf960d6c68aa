#include "OstrelEngine/Measures/Full/UsageSampler.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/Clock.h"
#include "OstrelPlatform/HostDetails.h"
#include "OstrelPlatform/HostStatistics.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <utility>

namespace Ostrel {

struct UsageSampler::Row {
    std::string_view category;
    std::string_view counter;
    Source source;
    /// Whether the counter grows and what counts is how fast.
    bool isRate = false;
    double scale = 1;
};

namespace {

constexpr double Percent = 100;

} // namespace

std::shared_ptr<UsageSampler> UsageSampler::shared() {
    static std::weak_ptr<UsageSampler> current;
    auto sampler = current.lock();
    if (!sampler)
        current = sampler = std::make_shared<UsageSampler>();
    return sampler;
}

const UsageSampler::Row* UsageSampler::find(std::string_view category, std::string_view counter) {
    static constexpr Row Rows[] = {{"PROCESS", "% PROCESSOR TIME", Source::ProcessorTime, true, Percent},
        {"PROCESS", "WORKING SET - PRIVATE", Source::PrivateBytes}, {"PROCESS", "PRIVATE BYTES", Source::PrivateBytes},
        {"PROCESS", "WORKING SET", Source::ResidentBytes}, {"PROCESS", "IO READ BYTES/SEC", Source::ReadBytes, true},
        {"PROCESS", "IO WRITE BYTES/SEC", Source::WrittenBytes, true},
        {"PROCESS", "IO DATA BYTES/SEC", Source::TransferredBytes, true},
        {"PROCESSOR", "% PROCESSOR TIME", Source::Processors, true, Percent},
        {"PROCESSOR INFORMATION", "% PROCESSOR TIME", Source::Processors, true, Percent},
        {"SYSTEM", "THREADS", Source::Threads}, {"SYSTEM", "PROCESSES", Source::Processes},
        {"MEMORY", "AVAILABLE BYTES", Source::AvailableBytes},
        {"MEMORY", "AVAILABLE KBYTES", Source::AvailableKilobytes},
        {"MEMORY", "AVAILABLE MBYTES", Source::AvailableMegabytes},
        {"PHYSICALDISK", "DISK READ BYTES/SEC", Source::DiskRead, true},
        {"PHYSICALDISK", "DISK WRITE BYTES/SEC", Source::DiskWritten, true},
        {"PHYSICALDISK", "DISK BYTES/SEC", Source::DiskBytes, true},
        {"PHYSICALDISK", "% DISK TIME", Source::DiskTime, true, Percent},
        {"NETWORK INTERFACE", "BYTES RECEIVED/SEC", Source::NetReceived, true},
        {"NETWORK INTERFACE", "BYTES SENT/SEC", Source::NetSent, true},
        {"NETWORK INTERFACE", "BYTES TOTAL/SEC", Source::NetBytes, true}, {"GPU ENGINE", "", Source::Nothing},
        {"GPU PROCESS MEMORY", "", Source::Nothing}, {"GPU ADAPTER MEMORY", "", Source::Nothing}};
    auto wanted = upperCased(trimmed(category));
    if (wanted == "LOGICALDISK")
        wanted = "PHYSICALDISK";
    if (wanted == "NETWORK ADAPTER")
        wanted = "NETWORK INTERFACE";
    const auto name = upperCased(trimmed(counter));
    const auto row = std::ranges::find_if(Rows, [&](const Row& candidate) {
        return candidate.category == wanted && (candidate.counter.empty() || candidate.counter == name);
    });
    return row == std::end(Rows) ? nullptr : row;
}

const std::vector<UsageInstance>* UsageSampler::instances(
    std::string_view category, std::string_view counter, const Platform& platform) {
    // Skins that update once a second wake a little early or late.
    constexpr double Age = 0.9;
    const auto* row = find(category, counter);
    if (!row)
        return nullptr;
    auto& kept = counters_[row];
    const double now = platform.clock.uptimeSeconds();
    if (kept.time < 0 || now - kept.time >= Age || now < kept.time)
        advance(kept, read(row->source, platform), now, *row);
    return &kept.instances;
}

void UsageSampler::advance(Counter& counter, std::vector<Raw> raw, double now, const Row& row) {
    const double seconds = counter.time < 0 ? 0 : now - counter.time;
    std::unordered_map<int, double> before;
    for (const auto& instance : counter.raw)
        before[instance.id] = instance.value;
    counter.instances.clear();
    for (const auto& instance : raw) {
        double value = instance.value;
        if (row.isRate) {
            const auto old = before.find(instance.id);
            // A number of a process may be that of a new one.
            const bool hasGrown = seconds > 0 && old != before.end() && value >= old->second;
            value = hasGrown ? (value - old->second) / seconds : 0;
        }
        counter.instances.push_back({instance.name, value * row.scale, instance.value});
    }
    counter.raw = std::move(raw);
    counter.time = now;
}

std::vector<UsageSampler::Raw> UsageSampler::read(Source source, const Platform& platform) {
    auto& statistics = platform.hostStatistics;
    auto* details = statistics.details();
    std::vector<Raw> raw;
    const auto available = [&statistics](double unit) {
        const auto memory = statistics.physicalMemory().value_or(MemoryFigures());
        return std::vector<Raw>{{0, "", (memory.total - memory.used) / unit}};
    };
    const auto each = [&raw](const auto& list, auto value) {
        int id = 0;
        for (const auto& item : list)
            raw.push_back({id++, value(item).first, value(item).second});
    };
    const auto eachProcess = [&](auto value) {
        if (details) {
            for (const auto& process : details->processes().processes)
                raw.push_back({process.id, process.name, value(process)});
        }
    };
    switch (source) {
    case Source::ProcessorTime:
        eachProcess([](const ProcessSample& p) { return p.processorSeconds; });
        break;
    case Source::PrivateBytes:
        eachProcess([](const ProcessSample& p) { return p.residentBytes - p.sharedBytes; });
        break;
    case Source::ResidentBytes:
        eachProcess([](const ProcessSample& p) { return p.residentBytes; });
        break;
    case Source::ReadBytes:
        eachProcess([](const ProcessSample& p) { return p.readBytes; });
        break;
    case Source::WrittenBytes:
        eachProcess([](const ProcessSample& p) { return p.writtenBytes; });
        break;
    case Source::TransferredBytes:
        eachProcess([](const ProcessSample& p) { return p.readBytes + p.writtenBytes; });
        break;
    case Source::Processors: {
        // Ticks of a hundredth of a second; the first entry stands for all processors together.
        constexpr double TicksASecond = 100;
        const auto& times = statistics.processors();
        for (std::size_t i = 0; i < times.size(); ++i) {
            const double share = i == 0 ? static_cast<double>(std::max<std::size_t>(times.size() - 1, 1)) : 1;
            raw.push_back({static_cast<int>(i), i == 0 ? "_Total" : formatInteger(static_cast<std::int64_t>(i) - 1),
                static_cast<double>(times[i].busy) / TicksASecond / share});
        }
        break;
    }
    case Source::Threads:
        return {{0, "", static_cast<double>(details ? details->threadCount() : 0)}};
    case Source::Processes:
        return {{0, "", static_cast<double>(details ? details->processes().processes.size() : 0)}};
    case Source::AvailableBytes:
        return available(1);
    case Source::AvailableKilobytes:
        return available(1 << 10);
    case Source::AvailableMegabytes:
        return available(1 << 20);
    case Source::DiskRead:
    case Source::DiskWritten:
    case Source::DiskBytes:
    case Source::DiskTime:
        if (details) {
            each(details->disks(), [source](const DiskActivity& disk) {
                const double value = source == Source::DiskRead ? disk.readBytes
                    : source == Source::DiskWritten             ? disk.writtenBytes
                    : source == Source::DiskBytes               ? disk.readBytes + disk.writtenBytes
                                                                : disk.busySeconds;
                return std::pair(disk.device, value);
            });
        }
        break;
    case Source::NetReceived:
    case Source::NetSent:
    case Source::NetBytes:
        if (details) {
            each(details->networkInterfaces(), [source](const NetworkInterface& interface) {
                const double value = (source == Source::NetSent ? 0 : static_cast<double>(interface.in))
                    + (source == Source::NetReceived ? 0 : static_cast<double>(interface.out));
                return std::pair(interface.name, value);
            });
        }
        break;
    case Source::Nothing:
        break;
    }
    return raw;
}

} // namespace Ostrel
