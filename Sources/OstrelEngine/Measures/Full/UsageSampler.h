#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Ostrel {

struct Platform;

/// One thing that a counter counts for: a process, a processor, a disk.
struct UsageInstance {
    std::string name;
    /// A second for counters that grow, else as it is.
    double value = 0;
    double raw = 0;
};

/// The counters that skins know by category and name, read at most once a second for all measures of all skins. Main
/// thread.
class UsageSampler {
public:
    /// Lives as long as somebody keeps it.
    static std::shared_ptr<UsageSampler> shared();

    /// Null when nothing serves the counter. Rates are 0 until a second sample. The pointer lives until the next call.
    const std::vector<UsageInstance>* instances(
        std::string_view category, std::string_view counter, const Platform& platform);

private:
    struct Raw {
        /// Tells instances of one name apart.
        int id = 0;
        std::string name;
        double value = 0;
    };
    struct Counter {
        double time = -1;
        std::vector<Raw> raw;
        std::vector<UsageInstance> instances;
    };
    enum class Source {
        ProcessorTime,
        PrivateBytes,
        ResidentBytes,
        ReadBytes,
        WrittenBytes,
        TransferredBytes,
        Processors,
        Threads,
        Processes,
        AvailableBytes,
        AvailableKilobytes,
        AvailableMegabytes,
        DiskRead,
        DiskWritten,
        DiskBytes,
        DiskTime,
        NetReceived,
        NetSent,
        NetBytes,
        Nothing,
    };
    struct Row;

    static const Row* find(std::string_view category, std::string_view counter);
    static std::vector<Raw> read(Source source, const Platform& platform);
    static void advance(Counter& counter, std::vector<Raw> raw, double now, const Row& row);

    std::unordered_map<const Row*, Counter> counters_;
};

} // namespace Ostrel
