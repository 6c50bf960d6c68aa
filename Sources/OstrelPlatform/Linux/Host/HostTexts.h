#pragma once

#include "OstrelPlatform/HostDetails.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What texts of the kernel and of /etc say about the machine's details. A line that makes no sense is as if it were
/// missing.
namespace Ostrel::HostTexts {

/// Of the first two hexadecimal digits.
std::optional<std::uint8_t> hexByte(std::string_view digits);

/// /proc/net/dev: names and counters, loopback left out.
std::vector<NetworkInterface> parseNetDev(std::string_view text);

struct Route {
    std::string interface;
    std::string gateway;
};
/// The default route of the lowest metric in /proc/net/route and in /proc/net/ipv6_route.
std::optional<Route> parseDefaultRoute4(std::string_view text);
std::optional<Route> parseDefaultRoute6(std::string_view text);

/// The quality of a link in /proc/net/wireless, 0 to 100; 0 without a line.
double parseWirelessQuality(std::string_view text, std::string_view interface);

struct ProcessStat {
    std::string name;
    double ticks = 0;
};
/// /proc/N/stat, whose name may hold blanks and parentheses.
std::optional<ProcessStat> parseProcessStat(std::string_view text);

/// The last path component of the program in /proc/N/cmdline; empty when there is none.
std::string parseCommandName(std::string_view text);

/// The numbers of a line as /proc/N/statm has them; what is no number ends them.
std::vector<double> parseNumbers(std::string_view line);

/// "key: value" and "key=value" lines, as /proc/N/io, /proc/cpuinfo and /etc/os-release have them, quotes dropped. The
/// first of equal keys stays.
std::map<std::string, std::string> parseFields(std::string_view text, char separator);

/// /proc/diskstats.
std::vector<DiskActivity> parseDiskStats(std::string_view text);

struct Mount {
    std::string path;
    std::string type;
    std::string source;
};
/// /proc/self/mountinfo in mounting order; of several on one path the last.
std::vector<Mount> parseMounts(std::string_view text);
Volume::Kind kindOfFileSystem(std::string_view type);

struct Resolver {
    std::string domain;
    std::string nameServer;
};
/// /etc/resolv.conf.
Resolver parseResolver(std::string_view text);

} // namespace Ostrel::HostTexts
