#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

/// One way to the network; loopback is none.
struct NetworkInterface {
    std::string name;
    int index = 0;
    /// Bytes since it came up.
    std::uint64_t in = 0;
    std::uint64_t out = 0;
    /// "up", "down", "dormant" and so on, as the kernel writes it.
    std::string state;
    bool hasCarrier = false;
    bool isWireless = false;
    bool hasDefaultRoute = false;

    friend bool operator==(const NetworkInterface&, const NetworkInterface&) = default;
};

/// One program that runs.
struct ProcessSample {
    int id = 0;
    /// Without path and arguments.
    std::string name;
    /// Seconds of all processors since it started.
    double processorSeconds = 0;
    /// Bytes in memory, and those of them that others share.
    double residentBytes = 0;
    double sharedBytes = 0;
    /// Bytes since it started; 0 where they are not told.
    double readBytes = 0;
    double writtenBytes = 0;

    friend bool operator==(const ProcessSample&, const ProcessSample&) = default;
};

/// All programs at one moment.
struct ProcessSamples {
    /// Monotonic seconds of the sample.
    double time = 0;
    std::vector<ProcessSample> processes;
};

/// One disk since the start of the system.
struct DiskActivity {
    std::string device;
    double readBytes = 0;
    double writtenBytes = 0;
    double busySeconds = 0;

    friend bool operator==(const DiskActivity&, const DiskActivity&) = default;
};

/// One input of a chip that measures.
struct Sensor {
    enum class Kind { Temperature, Fan, Voltage };

    Kind kind = Kind::Temperature;
    /// Of the chip, as "coretemp".
    std::string chip;
    std::string label;
    /// Degrees Celsius, rounds a minute, volts.
    double value = 0;
    /// Where the chip names one.
    std::optional<double> critical;

    friend bool operator==(const Sensor&, const Sensor&) = default;
};

/// What a computer runs on.
struct PowerFigures {
    bool hasBattery = false;
    bool isPluggedIn = true;
    bool isCharging = false;
    /// 0 to 100.
    double percent = 100;
    /// Until the battery is empty; absent when unknown.
    std::optional<double> secondsLeft;

    friend bool operator==(const PowerFigures&, const PowerFigures&) = default;
};

/// A place where files are kept.
struct Volume {
    enum class Kind { Missing, Removable, Fixed, Network, Optical, Memory };

    Kind kind = Kind::Missing;
    std::string label;
    /// Bytes. `available` is what this user may still fill.
    double total = 0;
    double free = 0;
    double available = 0;

    friend bool operator==(const Volume&, const Volume&) = default;
};

/// What stays as it is while the computer runs, or nearly so.
enum class MachineFact {
    ComputerName,
    FullHostName,
    UserName,
    UserID,
    UserFullName,
    /// Seconds since 1970.
    LogonTime,
    SystemStart,
    InstallTime,
    /// With and without its edition.
    SystemName,
    SystemVersion,
    VersionID,
    KernelRelease,
    SystemBits,
    PageSize,
    SearchDomain,
    NameServer,
    ProcessorName,
    ProcessorVendor,
    /// Nominal.
    ProcessorMHz,
    ProductName,
    ProductVendor,
    BoardName,
    FirmwareVersion,
};

/// What an interface is and which addresses it has; empty where there is none.
struct AdapterFacts {
    std::string description;
    /// "AA-BB-CC-DD-EE-FF".
    std::string hardwareAddress;
    /// ARPHRD_ number of the kernel.
    int hardwareType = 0;
    std::string address4, address6, mask4, gateway4, gateway6;
    /// Bits a second; 0 when unknown.
    double speed = 0;
};

/// What a machine consists of and does, in more detail than `HostStatistics` has. What cannot be read is empty or 0. A
/// source is read at most once in a wake, and costly ones at most once a second, whoever asks. References live until
/// the next wake. Main thread; nothing here waits for a server or a disk that sleeps.
class HostDetails {
public:
    virtual ~HostDetails() = default;
    /// In the order of their indices.
    virtual const std::vector<NetworkInterface>& networkInterfaces() = 0;
    virtual AdapterFacts adapter(const std::string& interface) = 0;
    /// Of the link of a wireless interface, 0 to 100.
    virtual double wirelessQuality(const std::string& interface) = 0;
    virtual const ProcessSamples& processes() = 0;
    /// Of all processes.
    virtual int threadCount() = 0;
    virtual const std::vector<DiskActivity>& disks() = 0;
    /// By chip and number.
    virtual const std::vector<Sensor>& sensors() = 0;
    virtual PowerFigures power() = 0;
    /// "C:" or a path. A server that does not answer keeps its last figures.
    virtual Volume volume(const std::string& drive) = 0;
    /// The device of a drive as `disks` names it; empty for none.
    virtual std::string diskOf(const std::string& drive) = 0;
    virtual std::string fact(MachineFact fact) = 0;
};

} // namespace Ostrel
