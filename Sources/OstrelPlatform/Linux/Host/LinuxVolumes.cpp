#include "OstrelPlatform/Linux/Host/LinuxVolumes.h"

#include "OstrelCore/Text/Text.h"

#include <sys/statvfs.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <thread>
#include <utility>

namespace Ostrel {

namespace {

constexpr std::size_t MountInfoBytes = 1 << 20;

bool isDisk(const HostTexts::Mount& mount) {
    const auto kind = HostTexts::kindOfFileSystem(mount.type);
    const bool isBoot = mount.path == "/boot" || mount.path.starts_with("/boot/") || mount.path == "/efi"
        || mount.path.starts_with("/snap/");
    return kind != Volume::Kind::Missing && kind != Volume::Kind::Memory && !isBoot
        && !mount.source.starts_with("/dev/loop");
}

bool isBelow(std::string_view path, std::string_view folder) {
    return folder == "/" || path == folder || (path.starts_with(folder) && path.substr(folder.size()).starts_with('/'));
}

const HostTexts::Mount* deepest(const std::vector<HostTexts::Mount>& mounts, std::string_view path) {
    const HostTexts::Mount* best = nullptr;
    for (const auto& mount : mounts) {
        if (isBelow(path, mount.path) && (!best || mount.path.size() >= best->path.size()))
            best = &mount;
    }
    return best;
}

bool takeFigures(const std::string& path, Volume& volume) {
    struct statvfs answer { };
    if (statvfs(path.c_str(), &answer) != 0)
        return false;
    const auto block = static_cast<double>(answer.f_frsize);
    volume.total = static_cast<double>(answer.f_blocks) * block;
    volume.free = static_cast<double>(answer.f_bfree) * block;
    volume.available = static_cast<double>(answer.f_bavail) * block;
    return true;
}

} // namespace

LinuxVolumes::LinuxVolumes(const std::string& root)
    : root_(root)
    , mountInfo_(root + "/proc/self/mountinfo") { }

const std::vector<HostTexts::Mount>& LinuxVolumes::mounts() {
    const auto text = mountInfo_.read(MountInfoBytes).value_or("");
    if (text != text_) {
        text_ = text;
        known_.clear();
        mounts_ = HostTexts::parseMounts(text);
    }
    return mounts_;
}

std::string LinuxVolumes::pathOf(
    std::string_view drive, const std::vector<HostTexts::Mount>& mounts, std::string_view home) {
    drive = trimmed(drive);
    if (drive.starts_with('/'))
        return std::string(drive);
    const bool isLetter = drive.size() >= 2 && drive[1] == ':' && asciiUpper(drive[0]) >= 'A'
        && asciiUpper(drive[0]) <= 'Z' && drive.find_first_not_of("\\/", 2) == std::string_view::npos;
    if (!isLetter)
        return {};
    const auto* first = deepest(mounts, home);
    auto letter = asciiUpper(drive[0]);
    if (letter == 'C')
        return first ? first->path : "/";
    // Disks that are the first one under another path are no further drives.
    char next = 'D';
    std::vector<std::string_view> sources{first ? std::string_view(first->source) : std::string_view()};
    for (const auto& mount : mounts) {
        if (!isDisk(mount) || mount.path == "/" || std::ranges::find(sources, mount.source) != sources.end())
            continue;
        sources.push_back(mount.source);
        if (next++ == letter)
            return mount.path;
    }
    return {};
}

const HostTexts::Mount* LinuxVolumes::mountOf(const std::string& path) {
    return deepest(mounts(), path);
}

Volume LinuxVolumes::volume(const std::string& drive) {
    const char* home = std::getenv("HOME");
    const auto path = pathOf(drive, mounts(), home ? home : "/");
    const auto* mount = path.empty() ? nullptr : mountOf(path);
    Volume volume;
    if (!mount)
        return volume;
    const auto known = known_.find(mount->source);
    volume = known == known_.end() ? known_[mount->source] = describe(*mount) : known->second;
    if (volume.kind == Volume::Kind::Network) {
        askServer(path, volume);
        return volume;
    }
    if (!takeFigures(path, volume))
        volume = {};
    return volume;
}

Volume LinuxVolumes::describe(const HostTexts::Mount& mount) const {
    Volume volume;
    volume.kind = HostTexts::kindOfFileSystem(mount.type);
    if (volume.kind == Volume::Kind::Missing)
        volume.kind = Volume::Kind::Fixed;
    if (volume.kind == Volume::Kind::Fixed && isRemovable(mount.source))
        volume.kind = Volume::Kind::Removable;
    volume.label = label(mount.source);
    return volume;
}

std::string LinuxVolumes::diskOf(const std::string& drive) {
    const char* home = std::getenv("HOME");
    const auto path = pathOf(drive, mounts(), home ? home : "/");
    const auto* mount = path.empty() ? nullptr : mountOf(path);
    return mount && mount->source.starts_with("/dev/") ? mount->source.substr(5) : std::string();
}

/// Waits for nothing: the figures are those of the last answer.
void LinuxVolumes::askServer(const std::string& path, Volume& volume) {
    const std::lock_guard lock(answers_->mutex);
    const auto known = answers_->volumes.find(path);
    if (known != answers_->volumes.end()) {
        volume.total = known->second.total;
        volume.free = known->second.free;
        volume.available = known->second.available;
    }
    if (std::exchange(answers_->asked[path], true))
        return;
    // A server that is gone holds its thread for minutes, and the end of the program must not wait for it.
    std::thread([path, answers = answers_] {
        Volume answer;
        const bool isThere = takeFigures(path, answer);
        const std::lock_guard guard(answers->mutex);
        if (isThere)
            answers->volumes[path] = answer;
        answers->asked[path] = false;
    }).detach();
}

bool LinuxVolumes::isRemovable(std::string_view source) const {
    if (!source.starts_with("/dev/"))
        return false;
    std::error_code error;
    const auto device = std::filesystem::canonical(root_ + "/sys/class/block/" + std::string(source.substr(5)), error);
    if (error)
        return false;
    if (device.string().find("/usb") != std::string::npos)
        return true;
    // A partition lies in the folder of its disk.
    for (const auto& folder : {device, device.parent_path()}) {
        ProcFile file((folder / "removable").string());
        if (const auto text = file.read(16))
            return text->starts_with('1');
    }
    return false;
}

std::string LinuxVolumes::label(std::string_view source) const {
    std::error_code error;
    const auto device = std::filesystem::canonical(root_ + std::string(source), error);
    if (error)
        return {};
    for (const auto& entry : std::filesystem::directory_iterator(root_ + "/dev/disk/by-label", error)) {
        std::error_code ignored;
        if (std::filesystem::canonical(entry.path(), ignored) != device || ignored)
            continue;
        // Blanks and the like are written as "\x20".
        const auto name = entry.path().filename().string();
        std::string result;
        for (std::size_t i = 0; i < name.size(); ++i) {
            const auto code = std::string_view(name).substr(i, 4);
            const auto byte = code.starts_with("\\x") ? HostTexts::hexByte(code.substr(2)) : std::nullopt;
            if (byte) {
                result += static_cast<char>(*byte);
                i += 3;
            } else {
                result += name[i];
            }
        }
        return result;
    }
    return {};
}

} // namespace Ostrel
