#include "OstrelPlatform/Linux/Host/LinuxHostDetails.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/Linux/Host/HostTexts.h"
#include "OstrelPlatform/Linux/Host/ProcFile.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <system_error>
#include <utility>

namespace Ostrel {

namespace {

constexpr std::size_t LargestList = 256 << 10;
constexpr std::size_t MaximumEntries = 20000;

double monotonicSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::string addressText(const sockaddr* address) {
    std::array<char, INET6_ADDRSTRLEN> text{};
    const void* bytes = address->sa_family == AF_INET
        ? static_cast<const void*>(&reinterpret_cast<const sockaddr_in*>(address)->sin_addr)
        : static_cast<const void*>(&reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr);
    return inet_ntop(address->sa_family, bytes, text.data(), text.size()) ? text.data() : "";
}

/// The first address of each family; one of IPv6 that reaches further than the link wins.
void takeAddresses(const std::string& interface, AdapterFacts& facts) {
    ifaddrs* first = nullptr;
    if (getifaddrs(&first) != 0)
        return;
    for (const auto* entry = first; entry; entry = entry->ifa_next) {
        if (!entry->ifa_addr || interface != entry->ifa_name)
            continue;
        const auto family = entry->ifa_addr->sa_family;
        if (family == AF_INET && facts.address4.empty()) {
            facts.address4 = addressText(entry->ifa_addr);
            facts.mask4 = entry->ifa_netmask ? addressText(entry->ifa_netmask) : "";
        }
        if (family == AF_INET6) {
            const auto text = addressText(entry->ifa_addr);
            if (facts.address6.empty() || (facts.address6.starts_with("fe80") && !text.starts_with("fe80")))
                facts.address6 = text;
        }
    }
    freeifaddrs(first);
}

std::string hostName() {
    std::array<char, 256> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

/// Login name, or with `isFull` the person's name.
std::string userName(bool isFull) {
    std::array<char, 4096> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found)
        return {};
    const std::string name = found->pw_name;
    if (!isFull)
        return name;
    const std::string_view person = found->pw_gecos ? found->pw_gecos : "";
    const auto full = trimmed(person.substr(0, person.find(',')));
    return full.empty() ? name : std::string(full);
}

/// Entries of a folder of the kernel come in no order: by name, numbers in it by their value.
bool comesBefore(const std::string& a, const std::string& b) {
    return a.size() == b.size() ? a < b : a.size() < b.size();
}

} // namespace

LinuxHostDetails::LinuxHostDetails(std::string root)
    : root_(std::move(root))
    , volumes_(root_) { }

template <typename Value, typename Read>
const Value& LinuxHostDetails::sampled(Sample<Value>& sample, Age age, Read read) {
    if (sample.wake == wake_)
        return sample.value;
    const bool wasTaken = sample.wake != 0;
    sample.wake = wake_;
    // Skins that update once a second wake a little early or late.
    constexpr double Costly = 0.9;
    const double now = monotonicSeconds();
    if (age == Age::Second && wasTaken && now - sample.time < Costly)
        return sample.value;
    sample.value = read();
    sample.time = now;
    return sample.value;
}

std::string LinuxHostDetails::read(const std::string& path, std::size_t maximumBytes) const {
    ProcFile file(root_ + path);
    return std::string(file.read(maximumBytes).value_or(""));
}

std::string LinuxHostDetails::line(const std::string& path) const {
    const auto text = read(path, 4 << 10);
    return std::string(trimmed(std::string_view(text).substr(0, text.find('\n'))));
}

std::optional<double> LinuxHostDetails::number(const std::string& path) const {
    return parseDouble(line(path));
}

std::vector<std::string> LinuxHostDetails::names(const std::string& folder) const {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(root_ + folder, error)) {
        if (names.size() < MaximumEntries)
            names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names, comesBefore);
    return names;
}

const std::vector<NetworkInterface>& LinuxHostDetails::networkInterfaces() {
    return sampled(interfaces_, Age::Wake, [this] { return readInterfaces(); });
}

std::vector<NetworkInterface> LinuxHostDetails::readInterfaces() const {
    auto interfaces = HostTexts::parseNetDev(read("/proc/net/dev", LargestList));
    const auto route4 = HostTexts::parseDefaultRoute4(read("/proc/net/route", LargestList));
    const auto route6 = HostTexts::parseDefaultRoute6(read("/proc/net/ipv6_route", LargestList));
    std::error_code error;
    for (auto& interface : interfaces) {
        const auto folder = "/sys/class/net/" + interface.name;
        interface.index = static_cast<int>(numericAsInt64(number(folder + "/ifindex").value_or(0)));
        interface.state = line(folder + "/operstate");
        interface.hasCarrier = line(folder + "/carrier") == "1";
        interface.isWireless = std::filesystem::exists(root_ + folder + "/wireless", error)
            || std::filesystem::exists(root_ + folder + "/phy80211", error);
        interface.hasDefaultRoute
            = (route4 && route4->interface == interface.name) || (route6 && route6->interface == interface.name);
    }
    std::ranges::stable_sort(interfaces, {}, &NetworkInterface::index);
    return interfaces;
}

AdapterFacts LinuxHostDetails::adapter(const std::string& interface) {
    AdapterFacts facts;
    if (interface.empty() || interface.find('/') != interface.npos)
        return facts;
    const auto folder = "/sys/class/net/" + interface;
    facts.hardwareType = static_cast<int>(numericAsInt64(number(folder + "/type").value_or(0)));
    facts.speed = std::max(0.0, number(folder + "/speed").value_or(0)) * 1e6;
    facts.hardwareAddress = upperCased(replacingOccurrences(line(folder + "/address"), ":", "-"));
    const auto uevent = HostTexts::parseFields(read(folder + "/device/uevent"), '=');
    const auto driver = uevent.find("DRIVER");
    facts.description = driver == uevent.end() ? interface : interface + " (" + driver->second + ")";
    takeAddresses(interface, facts);
    const auto route4 = HostTexts::parseDefaultRoute4(read("/proc/net/route", LargestList));
    const auto route6 = HostTexts::parseDefaultRoute6(read("/proc/net/ipv6_route", LargestList));
    if (route4 && route4->interface == interface)
        facts.gateway4 = route4->gateway;
    if (route6 && route6->interface == interface)
        facts.gateway6 = route6->gateway;
    return facts;
}

double LinuxHostDetails::wirelessQuality(const std::string& interface) {
    return HostTexts::parseWirelessQuality(read("/proc/net/wireless"), interface);
}

const ProcessSamples& LinuxHostDetails::processes() {
    return sampled(processes_, Age::Second, [this] { return readProcesses(); });
}

ProcessSamples LinuxHostDetails::readProcesses() const {
    static const double ticks = static_cast<double>(std::max(sysconf(_SC_CLK_TCK), 1L));
    static const double page = static_cast<double>(std::max(sysconf(_SC_PAGESIZE), 1L));
    constexpr std::size_t LongestShortName = 15;
    ProcessSamples samples;
    samples.time = monotonicSeconds();
    for (const auto& name : names("/proc")) {
        const auto id = parseInteger(name);
        if (!id || !isASCIIDigit(name.front()))
            continue;
        const auto folder = "/proc/" + name;
        const auto stat = HostTexts::parseProcessStat(read(folder + "/stat", 4 << 10));
        if (!stat)
            continue;
        ProcessSample process;
        process.id = static_cast<int>(*id);
        process.name = stat->name;
        process.processorSeconds = stat->ticks / ticks;
        // The kernel cuts long names.
        if (process.name.size() >= LongestShortName) {
            const auto command = HostTexts::parseCommandName(read(folder + "/cmdline", 4 << 10));
            if (command.starts_with(process.name))
                process.name = command;
        }
        if (const auto pages = HostTexts::parseNumbers(read(folder + "/statm", 256)); pages.size() > 2) {
            process.residentBytes = pages[1] * page;
            process.sharedBytes = pages[2] * page;
        }
        const auto io = HostTexts::parseFields(read(folder + "/io", 1 << 10), ':');
        const auto bytes = [&io](const char* key) {
            const auto field = io.find(key);
            return field == io.end() ? 0 : parseDouble(field->second).value_or(0);
        };
        process.readBytes = bytes("read_bytes");
        process.writtenBytes = bytes("write_bytes");
        samples.processes.push_back(std::move(process));
    }
    return samples;
}

int LinuxHostDetails::threadCount() {
    // "0.20 0.18 0.12 1/80 11206": running and all.
    const auto text = line("/proc/loadavg");
    const auto slash = text.find('/');
    if (slash == text.npos)
        return 0;
    return static_cast<int>(parseNumberPrefix(std::string_view(text).substr(slash + 1)).value);
}

const std::vector<DiskActivity>& LinuxHostDetails::disks() {
    return sampled(
        disks_, Age::Wake, [this] { return HostTexts::parseDiskStats(read("/proc/diskstats", LargestList)); });
}

const std::vector<Sensor>& LinuxHostDetails::sensors() {
    return sampled(sensors_, Age::Second, [this] { return readSensors(); });
}

std::vector<Sensor> LinuxHostDetails::readSensors() const {
    constexpr int MaximumInputs = 64;
    constexpr double Milli = 1000;
    const struct {
        std::string_view prefix;
        Sensor::Kind kind;
        int first;
        double scale;
    } kinds[] = {{"temp", Sensor::Kind::Temperature, 1, Milli}, {"fan", Sensor::Kind::Fan, 1, 1},
        {"in", Sensor::Kind::Voltage, 0, Milli}};
    std::vector<std::pair<std::string, std::string>> chips;
    for (const auto& folder : names("/sys/class/hwmon"))
        chips.emplace_back(line("/sys/class/hwmon/" + folder + "/name"), "/sys/class/hwmon/" + folder);
    std::ranges::stable_sort(chips, {}, &std::pair<std::string, std::string>::first);
    std::vector<Sensor> sensors;
    for (const auto& [chip, folder] : chips) {
        for (const auto& kind : kinds) {
            for (int i = kind.first; i < MaximumInputs; ++i) {
                const auto input = folder + "/" + std::string(kind.prefix) + formatInteger(i);
                const auto value = number(input + "_input");
                if (!value)
                    continue;
                Sensor sensor{kind.kind, chip, line(input + "_label"), *value / kind.scale, std::nullopt};
                if (const auto critical = number(input + "_crit"))
                    sensor.critical = *critical / kind.scale;
                sensors.push_back(std::move(sensor));
            }
        }
    }
    return sensors;
}

PowerFigures LinuxHostDetails::power() {
    return sampled(power_, Age::Second, [this] { return readPower(); });
}

PowerFigures LinuxHostDetails::readPower() const {
    PowerFigures figures;
    bool hasMains = false;
    bool isOnline = false;
    for (const auto& name : names("/sys/class/power_supply")) {
        const auto folder = "/sys/class/power_supply/" + name;
        const auto type = line(folder + "/type");
        if (type == "Mains" || type == "USB") {
            hasMains = hasMains || type == "Mains";
            isOnline = isOnline || line(folder + "/online") == "1";
        }
        // Mice and the like have batteries of their own.
        if (type != "Battery" || line(folder + "/scope") == "Device" || figures.hasBattery)
            continue;
        figures.hasBattery = true;
        figures.percent = std::clamp(number(folder + "/capacity").value_or(0), 0.0, 100.0);
        const auto status = line(folder + "/status");
        figures.isCharging = status == "Charging";
        figures.isPluggedIn = status != "Discharging";
        const auto left = number(folder + "/time_to_empty_now");
        const auto energy = number(folder + "/energy_now");
        const auto power = number(folder + "/power_now");
        const auto charge = number(folder + "/charge_now");
        const auto current = number(folder + "/current_now");
        if (status != "Discharging")
            continue;
        if (left && *left > 0)
            figures.secondsLeft = *left;
        else if (energy && power && *power > 0)
            figures.secondsLeft = *energy / *power * 3600;
        else if (charge && current && *current > 0)
            figures.secondsLeft = *charge / *current * 3600;
    }
    if (figures.hasBattery && hasMains)
        figures.isPluggedIn = isOnline;
    return figures;
}

Volume LinuxHostDetails::volume(const std::string& drive) {
    constexpr std::size_t MaximumDrives = 1000;
    if (volumeSamples_.size() > MaximumDrives)
        volumeSamples_.clear();
    return sampled(volumeSamples_[drive], Age::Wake, [&] { return volumes_.volume(drive); });
}

std::string LinuxHostDetails::fact(MachineFact fact) {
    const auto known = facts_.find(fact);
    if (known != facts_.end())
        return known->second;
    auto text = readFact(fact);
    // The way to the network changes with the place.
    if (fact != MachineFact::NameServer && fact != MachineFact::SearchDomain)
        facts_[fact] = text;
    return text;
}

std::string LinuxHostDetails::readFact(MachineFact fact) const {
    const auto release = [this](const char* key) {
        auto fields = HostTexts::parseFields(read("/etc/os-release"), '=');
        return fields[key];
    };
    const auto resolver = [this] { return HostTexts::parseResolver(read("/etc/resolv.conf")); };
    switch (fact) {
    case MachineFact::ComputerName: {
        const auto name = hostName();
        return name.substr(0, name.find('.'));
    }
    case MachineFact::FullHostName: {
        const auto name = hostName();
        const auto domain = resolver().domain;
        return name.find('.') != name.npos || domain.empty() ? name : name + "." + domain;
    }
    case MachineFact::UserName:
        return userName(false);
    case MachineFact::UserFullName:
        return userName(true);
    case MachineFact::UserID:
        return formatInteger(getuid());
    case MachineFact::LogonTime: {
        struct stat information { };
        const auto folder = root_ + "/run/user/" + formatInteger(getuid());
        return stat(folder.c_str(), &information) == 0 ? formatInteger(information.st_ctim.tv_sec) : "";
    }
    case MachineFact::SystemStart: {
        const auto up = parseNumberPrefix(line("/proc/uptime")).value;
        return formatInteger(static_cast<std::int64_t>(std::time(nullptr)) - numericAsInt64(up));
    }
    case MachineFact::InstallTime: {
        struct stat information { };
        return stat((root_ + "/lost+found").c_str(), &information) == 0
                || stat((root_ + "/etc").c_str(), &information) == 0
            ? formatInteger(information.st_mtim.tv_sec)
            : "";
    }
    case MachineFact::SystemName:
        return release("PRETTY_NAME");
    case MachineFact::SystemVersion:
        return std::string(trimmed(release("NAME") + " " + release("VERSION_ID")));
    case MachineFact::VersionID:
        return release("VERSION_ID");
    case MachineFact::KernelRelease:
        return line("/proc/sys/kernel/osrelease");
    case MachineFact::SystemBits:
        return formatInteger(sizeof(void*) * 8);
    case MachineFact::PageSize:
        return formatInteger(sysconf(_SC_PAGESIZE));
    case MachineFact::SearchDomain:
        return resolver().domain;
    case MachineFact::NameServer:
        return resolver().nameServer;
    case MachineFact::ProductName:
        return line("/sys/class/dmi/id/product_name");
    case MachineFact::ProductVendor:
        return line("/sys/class/dmi/id/sys_vendor");
    case MachineFact::BoardName:
        return line("/sys/class/dmi/id/board_name");
    case MachineFact::FirmwareVersion:
        return line("/sys/class/dmi/id/bios_version");
    default:
        return readProcessorFact(fact);
    }
}

std::string LinuxHostDetails::readProcessorFact(MachineFact fact) const {
    auto fields = HostTexts::parseFields(read("/proc/cpuinfo"), ':');
    if (fact == MachineFact::ProcessorName)
        return fields["model name"];
    if (fact == MachineFact::ProcessorVendor)
        return fields["vendor_id"];
    if (fact != MachineFact::ProcessorMHz)
        return {};
    const std::string folder = "/sys/devices/system/cpu/cpu0/cpufreq/";
    for (const auto* file : {"base_frequency", "cpuinfo_max_freq"}) {
        if (const auto kilohertz = number(folder + file))
            return formatInteger(numericAsInt64(*kilohertz / 1000));
    }
    return formatInteger(numericAsInt64(parseDouble(fields["cpu MHz"]).value_or(0)));
}

} // namespace Ostrel
