#include "OstrelPlatform/Linux/Host/HostTexts.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>

namespace Ostrel::HostTexts {

namespace {

constexpr double SectorBytes = 512;

std::vector<std::string_view> words(std::string_view line) {
    std::vector<std::string_view> result;
    for (;;) {
        line.remove_prefix(std::min(line.size(), line.find_first_not_of(" \t")));
        if (line.empty())
            return result;
        result.push_back(line.substr(0, line.find_first_of(" \t")));
        line.remove_prefix(result.back().size());
    }
}

std::uint64_t counter(std::string_view word) {
    const auto number = parseInteger(word);
    return number && *number > 0 ? static_cast<std::uint64_t>(*number) : 0;
}

/// "010200C0" is 192.0.2.1: the bytes of the address from the last to the first.
std::optional<std::string> address4(std::string_view digits) {
    std::string result;
    for (int i = 3; i >= 0; --i) {
        const auto byte = digits.size() == 8 ? hexByte(digits.substr(static_cast<std::size_t>(i) * 2)) : std::nullopt;
        if (!byte)
            return std::nullopt;
        result += (result.empty() ? "" : ".") + formatInteger(*byte);
    }
    return result;
}

/// 32 digits as groups of four, zeros in front of a group dropped.
std::string address6(std::string_view digits) {
    std::string result;
    for (std::size_t i = 0; i + 4 <= digits.size(); i += 4) {
        auto group = digits.substr(i, 4);
        group.remove_prefix(std::min<std::size_t>(3, group.find_first_not_of('0')));
        result += (result.empty() ? "" : ":") + lowerCased(group);
    }
    return result;
}

/// Blanks, newlines and backslashes of a path are written as three octal digits.
std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto digits = text.substr(i + 1, 3);
        const bool isCode = text[i] == '\\' && digits.size() == 3
            && std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '7'; });
        if (isCode) {
            result += static_cast<char>((digits[0] - '0') * 64 + (digits[1] - '0') * 8 + digits[2] - '0');
            i += 3;
        } else {
            result += text[i];
        }
    }
    return result;
}

bool contains(std::span<const std::string_view> names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

} // namespace

std::optional<std::uint8_t> hexByte(std::string_view digits) {
    int value = 0;
    for (const char c : digits.substr(0, 2)) {
        const char upper = asciiUpper(c);
        const int digit = isASCIIDigit(c) ? c - '0' : upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
        if (digit < 0)
            return std::nullopt;
        value = value * 16 + digit;
    }
    return digits.size() >= 2 ? std::optional(static_cast<std::uint8_t>(value)) : std::nullopt;
}

std::vector<NetworkInterface> parseNetDev(std::string_view text) {
    constexpr std::size_t Received = 0;
    constexpr std::size_t Sent = 8;
    std::vector<NetworkInterface> interfaces;
    for (const auto line : splitDroppingEmpty(text, '\n')) {
        const auto colon = line.rfind(':');
        if (colon == std::string_view::npos)
            continue;
        const auto name = trimmed(line.substr(0, colon));
        const auto numbers = words(line.substr(colon + 1));
        if (name == "lo" || numbers.size() <= Sent)
            continue;
        NetworkInterface interface;
        interface.name = name;
        interface.in = counter(numbers[Received]);
        interface.out = counter(numbers[Sent]);
        interfaces.push_back(std::move(interface));
    }
    return interfaces;
}

std::optional<Route> parseDefaultRoute4(std::string_view text) {
    constexpr std::size_t Metric = 6;
    std::optional<Route> best;
    std::int64_t bestMetric = 0;
    for (const auto line : splitDroppingEmpty(text, '\n')) {
        const auto row = words(line);
        if (row.size() <= Metric + 1 || row[1] != "00000000" || row[Metric + 1] != "00000000")
            continue;
        const auto gateway = address4(row[2]);
        const auto metric = parseInteger(row[Metric]).value_or(0);
        if (!gateway || (best && metric >= bestMetric))
            continue;
        best = Route{std::string(row[0]), *gateway};
        bestMetric = metric;
    }
    return best;
}

std::optional<Route> parseDefaultRoute6(std::string_view text) {
    constexpr std::size_t Interface = 9;
    for (const auto line : splitDroppingEmpty(text, '\n')) {
        const auto row = words(line);
        const bool isDefault = row.size() > Interface && row[0] == std::string(32, '0') && row[1] == "00"
            && row[4].size() == 32 && row[4] != std::string(32, '0');
        if (isDefault && row[Interface] != "lo")
            return Route{std::string(row[Interface]), address6(row[4])};
    }
    return std::nullopt;
}

double parseWirelessQuality(std::string_view text, std::string_view interface) {
    // Drivers count the link from 0 to 70.
    constexpr double Best = 70;
    for (const auto line : splitDroppingEmpty(text, '\n')) {
        const auto row = words(line);
        if (row.size() > 2 && row[0].ends_with(':') && row[0].substr(0, row[0].size() - 1) == interface)
            return std::clamp(parseNumberPrefix(row[2]).value / Best * 100, 0.0, 100.0);
    }
    return 0;
}

std::optional<ProcessStat> parseProcessStat(std::string_view text) {
    constexpr std::size_t UserTicks = 11;
    constexpr std::size_t SystemTicks = 12;
    const auto open = text.find('(');
    const auto close = text.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open)
        return std::nullopt;
    const auto rest = words(text.substr(close + 1));
    if (rest.size() <= SystemTicks)
        return std::nullopt;
    return ProcessStat{std::string(text.substr(open + 1, close - open - 1)),
        static_cast<double>(counter(rest[UserTicks])) + static_cast<double>(counter(rest[SystemTicks]))};
}

std::string parseCommandName(std::string_view text) {
    const auto program = text.substr(0, text.find('\0'));
    const auto slash = program.rfind('/');
    return std::string(slash == std::string_view::npos ? program : program.substr(slash + 1));
}

std::vector<double> parseNumbers(std::string_view line) {
    std::vector<double> numbers;
    for (const auto word : words(line.substr(0, line.find('\n')))) {
        const auto number = parseInteger(word);
        if (!number)
            break;
        numbers.push_back(static_cast<double>(*number));
    }
    return numbers;
}

std::map<std::string, std::string> parseFields(std::string_view text, char separator) {
    constexpr std::size_t MaximumFields = 1000;
    std::map<std::string, std::string> fields;
    for (const auto line : splitDroppingEmpty(text, '\n')) {
        const auto end = line.find(separator);
        if (end == std::string_view::npos || line.starts_with('#') || fields.size() >= MaximumFields)
            continue;
        auto value = trimmed(line.substr(end + 1));
        if (value.size() > 1 && value.front() == '\'' && value.back() == '\'')
            value = value.substr(1, value.size() - 2);
        fields.emplace(trimmed(line.substr(0, end)), withoutDoubleQuotes(value));
    }
    return fields;
}

std::vector<DiskActivity> parseDiskStats(std::string_view text) {
    constexpr std::size_t Name = 2;
    constexpr std::size_t SectorsRead = 5;
    constexpr std::size_t SectorsWritten = 9;
    constexpr std::size_t BusyMilliseconds = 12;
    std::vector<DiskActivity> disks;
    for (const auto line : splitDroppingEmpty(text, '\n')) {
        const auto row = words(line);
        if (row.size() <= BusyMilliseconds)
            continue;
        disks.push_back({std::string(row[Name]), static_cast<double>(counter(row[SectorsRead])) * SectorBytes,
            static_cast<double>(counter(row[SectorsWritten])) * SectorBytes,
            static_cast<double>(counter(row[BusyMilliseconds])) / 1000});
    }
    return disks;
}

std::vector<Mount> parseMounts(std::string_view text) {
    constexpr std::size_t MountPoint = 4;
    std::vector<Mount> mounts;
    for (const auto line : splitDroppingEmpty(text, '\n')) {
        const auto row = words(line);
        const auto separator = std::ranges::find(row, "-");
        if (row.size() <= MountPoint || row.end() - separator < 3 || !row[MountPoint].starts_with('/'))
            continue;
        Mount mount{unescaped(row[MountPoint]), std::string(*(separator + 1)), unescaped(*(separator + 2))};
        const auto same = std::ranges::find(mounts, mount.path, &Mount::path);
        if (same == mounts.end())
            mounts.push_back(std::move(mount));
        else
            *same = std::move(mount);
    }
    return mounts;
}

Volume::Kind kindOfFileSystem(std::string_view type) {
    constexpr std::string_view Servers[] = {"afs", "ceph", "cifs", "fuse.davfs", "fuse.rclone", "fuse.sshfs", "nfs",
        "nfs4", "smb3", "smbfs", "9p", "fuse.gvfsd-fuse"};
    constexpr std::string_view Disks[] = {"apfs", "bcachefs", "btrfs", "exfat", "ext2", "ext3", "ext4", "f2fs",
        "fuseblk", "hfs", "hfsplus", "jfs", "msdos", "ntfs", "ntfs3", "overlay", "reiserfs", "vfat", "xfs", "zfs"};
    if (contains(Servers, type))
        return Volume::Kind::Network;
    if (type == "iso9660" || type == "udf")
        return Volume::Kind::Optical;
    if (type == "tmpfs" || type == "ramfs")
        return Volume::Kind::Memory;
    return contains(Disks, type) ? Volume::Kind::Fixed : Volume::Kind::Missing;
}

Resolver parseResolver(std::string_view text) {
    Resolver resolver;
    for (const auto line : splitDroppingEmpty(text, '\n')) {
        const auto row = words(line);
        if (row.size() < 2)
            continue;
        if (row[0] == "nameserver" && resolver.nameServer.empty())
            resolver.nameServer = row[1];
        if ((row[0] == "domain" || row[0] == "search") && row[1] != ".")
            resolver.domain = row[1];
    }
    return resolver;
}

} // namespace Ostrel::HostTexts
