#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

class HostDetails;

/// Cumulative ticks of all processors together. Interrupt time counts as system, waiting for a disk as idle.
struct CPUTicks {
    std::uint64_t user = 0;
    std::uint64_t system = 0;
    std::uint64_t idle = 0;
    std::uint64_t nice = 0;

    friend bool operator==(const CPUTicks&, const CPUTicks&) = default;
};

/// Cumulative ticks of one processor. What a virtual machine's host took away counts as busy, waiting for a disk as
/// idle.
struct ProcessorTimes {
    std::uint64_t busy = 0;
    std::uint64_t idle = 0;

    friend bool operator==(const ProcessorTimes&, const ProcessorTimes&) = default;
};

/// Bytes. `used` of the memory is the total less what is available.
struct MemoryFigures {
    double used = 0;
    double total = 0;

    friend bool operator==(const MemoryFigures&, const MemoryFigures&) = default;
};

struct FileSystemFigures {
    double total = 0;
    double free = 0;

    friend bool operator==(const FileSystemFigures&, const FileSystemFigures&) = default;
};

/// Bytes since the interfaces came up, all but loopback together.
struct NetworkBytes {
    std::uint64_t in = 0;
    std::uint64_t out = 0;

    friend bool operator==(const NetworkBytes&, const NetworkBytes&) = default;
};

/// Figures of the machine; absent when a read fails. A source is read at most once between two calls of `beginWake`,
/// whoever asks, so that one sample serves all measures of all skins. Main thread.
class HostStatistics {
public:
    virtual ~HostStatistics() = default;
    /// Forgets the samples; the main queue calls it before the timers of a wake fire.
    virtual void beginWake() = 0;
    virtual std::optional<CPUTicks> cpuTicks() = 0;
    virtual std::optional<MemoryFigures> physicalMemory() = 0;
    virtual std::optional<MemoryFigures> swap() = 0;
    virtual std::optional<FileSystemFigures> fileSystem(const std::string& path) = 0;
    virtual std::optional<NetworkBytes> networkBytes() = 0;
    /// All processors together, then each in the order of their numbers; a number without a processor has zeros. Empty
    /// when the read fails. The reference lives until the next wake.
    virtual const std::vector<ProcessorTimes>& processors() = 0;
    /// Null where the machine tells no more.
    virtual HostDetails* details() { return nullptr; }
};

} // namespace Ostrel
