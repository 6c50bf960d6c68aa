#include "OstrelPlatform/Linux/Files/MountTable.h"

#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <utility>

namespace Ostrel {

namespace {

constexpr std::size_t MostBytes = 1 << 20;

constexpr std::string_view KernelSystems[] = {"binfmt_misc", "bpf", "cgroup", "cgroup2", "configfs", "debugfs",
    "devpts", "devtmpfs", "efivarfs", "fusectl", "hugetlbfs", "mqueue", "nsfs", "proc", "pstore", "rpc_pipefs",
    "securityfs", "selinuxfs", "squashfs", "sysfs", "tracefs"};
constexpr std::string_view SlowSystems[] = {"afs", "autofs", "ceph", "cifs", "fuse.gvfsd-fuse", "fuse.portal",
    "fuse.rclone", "fuse.sshfs", "nfs", "nfs4", "smb3", "smbfs"};

bool canHoldTrash(std::string_view type) {
    return std::ranges::find(KernelSystems, type) == std::end(KernelSystems)
        && std::ranges::find(SlowSystems, type) == std::end(SlowSystems);
}

/// Blanks, newlines and backslashes of a path are written as three octal digits.
std::string unescaped(std::string_view text) {
    const auto isOctal = [](char c) { return c >= '0' && c <= '7'; };
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto digits = text.substr(i + 1, 3);
        if (text[i] == '\\' && digits.size() == 3 && std::ranges::all_of(digits, isOctal)) {
            result += static_cast<char>((digits[0] - '0') * 64 + (digits[1] - '0') * 8 + digits[2] - '0');
            i += 3;
        } else {
            result += text[i];
        }
    }
    return result;
}

} // namespace

MountTable::MountTable(std::string mountInfoFile)
    : file_(std::move(mountInfoFile)) { }

const std::vector<std::string>& MountTable::volumes() {
    const auto text = file_.read(MostBytes).value_or("");
    if (text != text_) {
        text_ = text;
        volumes_ = parse(text);
    }
    return volumes_;
}

/// "36 35 98:0 / /mnt/disk rw,noatime shared:1 - ext4 /dev/sdb1 rw"
std::vector<std::string> MountTable::parse(std::string_view mountInfo) {
    constexpr std::size_t MountPoint = 4;
    std::vector<std::string> volumes;
    for (const auto line : splitDroppingEmpty(mountInfo, '\n')) {
        const auto words = splitDroppingEmpty(line, ' ');
        const auto separator = std::ranges::find(words, "-");
        if (words.size() <= MountPoint || separator == words.end() || separator + 1 == words.end()
            || !words[MountPoint].starts_with('/') || !canHoldTrash(*(separator + 1)))
            continue;
        auto path = unescaped(words[MountPoint]);
        if (std::ranges::find(volumes, path) == volumes.end())
            volumes.push_back(std::move(path));
    }
    return volumes;
}

} // namespace Ostrel
