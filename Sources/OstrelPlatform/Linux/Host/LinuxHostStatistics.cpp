#include "OstrelPlatform/Linux/Host/LinuxHostStatistics.h"

#include <sys/statvfs.h>

#include <optional>
#include <string>

namespace Ostrel {

namespace {

/// The first line is asked for; its ten numbers have at most 20 digits each.
constexpr std::size_t StatBytes = 256;
/// A line a processor, and behind them a line of all interrupts that is not needed.
constexpr std::size_t ProcessorsBytes = 64 << 10;
constexpr std::size_t MeminfoBytes = 8 << 10;
/// Some thousand interfaces.
constexpr std::size_t NetDevBytes = 256 << 10;

std::optional<FileSystemFigures> askFileSystem(const std::string& path) {
    struct statvfs answer { };
    if (statvfs(path.c_str(), &answer) != 0)
        return std::nullopt;
    const auto blockSize = static_cast<double>(answer.f_frsize);
    return FileSystemFigures{
        static_cast<double>(answer.f_blocks) * blockSize, static_cast<double>(answer.f_bavail) * blockSize};
}

} // namespace

LinuxHostStatistics::LinuxHostStatistics(const std::string& procFolder)
    : statFile_(procFolder + "/stat")
    , meminfoFile_(procFolder + "/meminfo")
    , netDevFile_(procFolder + "/net/dev") { }

void LinuxHostStatistics::beginWake() {
    ++wake_;
    details_.beginWake();
}

template <typename Value, typename Read> const Value& LinuxHostStatistics::sampled(Sample<Value>& sample, Read read) {
    if (sample.wake != wake_)
        sample = {read(), wake_};
    return sample.value;
}

std::optional<CPUTicks> LinuxHostStatistics::cpuTicks() {
    return sampled(cpu_, [this] {
        const auto text = statFile_.read(StatBytes);
        return text ? ProcFigures::parseStat(*text) : std::nullopt;
    });
}

const std::vector<ProcessorTimes>& LinuxHostStatistics::processors() {
    return sampled(processors_, [this] {
        const auto text = statFile_.read(ProcessorsBytes);
        return text ? ProcFigures::parseProcessors(*text) : std::vector<ProcessorTimes>();
    });
}

const ProcFigures::Memory& LinuxHostStatistics::memory() {
    return sampled(memory_, [this] {
        const auto text = meminfoFile_.read(MeminfoBytes);
        return text ? ProcFigures::parseMeminfo(*text) : ProcFigures::Memory();
    });
}

std::optional<NetworkBytes> LinuxHostStatistics::networkBytes() {
    return sampled(network_, [this] {
        const auto text = netDevFile_.read(NetDevBytes);
        return text ? std::optional(ProcFigures::parseNetDev(*text)) : std::nullopt;
    });
}

std::optional<FileSystemFigures> LinuxHostStatistics::fileSystem(const std::string& path) {
    return sampled(fileSystems_[path], [&path] { return askFileSystem(path); });
}

} // namespace Ostrel
