#include "OstrelCore/Files/AtomicFile.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Numbers.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace Ostrel {

namespace {

constexpr int MaxLinks = 40;
constexpr int MaxNames = 100;

/// What a path finally means: links are followed by hand because the last of them may lead to a file still to be made.
std::optional<std::string> linkTarget(std::string path) {
    for (int i = 0; i < MaxLinks; ++i) {
        std::error_code failed;
        if (!std::filesystem::is_symlink(path, failed))
            return path;
        const auto target = std::filesystem::read_symlink(path, failed).string();
        if (failed)
            return std::nullopt;
        path = target.starts_with('/') ? target : appendingPathComponent(deletingLastPathComponent(path), target);
    }
    return std::nullopt;
}

/// A new file beside its target, gone at the end of the scope unless it has taken the target's place.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& directory) {
        for (int i = 0; i < MaxNames && descriptor_ < 0; ++i) {
            // A short name of our own: the target's may be as long as names can be already.
            const auto name = ".ostrel-" + formatInteger(::getpid()) + "-" + formatInteger(i);
            path_ = directory.empty() ? name : appendingPathComponent(directory, name);
            descriptor_ = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (descriptor_ < 0 && errno != EEXIST)
                return;
        }
    }
    ~TemporaryFile() {
        if (descriptor_ < 0)
            return;
        ::close(descriptor_);
        if (!isMoved_)
            ::unlink(path_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    bool isOpen() const { return descriptor_ >= 0; }

    void takeModeAndOwner(const struct stat& original) {
        // Only root may give a file away; whoever may not still owns what he writes. Changing the owner clears mode
        // bits, so the mode comes second.
        const bool isSame = original.st_uid == ::geteuid() && original.st_gid == ::getegid();
        if (!isSame && ::fchown(descriptor_, original.st_uid, original.st_gid) != 0) [[maybe_unused]]
            const int ignored = ::fchown(descriptor_, static_cast<uid_t>(-1), original.st_gid);
        ::fchmod(descriptor_, original.st_mode & 07777);
    }

    bool write(std::string_view bytes) {
        while (!bytes.empty()) {
            const auto count = ::write(descriptor_, bytes.data(), bytes.size());
            if (count < 0 && errno == EINTR)
                continue;
            if (count <= 0)
                return false;
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
        return ::fsync(descriptor_) == 0;
    }

    bool moveTo(const std::string& target) {
        isMoved_ = std::rename(path_.c_str(), target.c_str()) == 0;
        return isMoved_;
    }

private:
    std::string path_;
    int descriptor_ = -1;
    bool isMoved_ = false;
};

/// The rename itself is on disk only once the folder is.
void syncDirectory(const std::string& directory) {
    const int descriptor = ::open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    ::fsync(descriptor);
    ::close(descriptor);
}

/// A rename needs no permission of the file itself, and root needs none at all; a file marked as not to be written is
/// still not to be replaced.
bool mayReplace(const std::string& path, const struct stat& status) {
    return S_ISREG(status.st_mode) && (status.st_mode & 0222) != 0 && ::access(path.c_str(), W_OK) == 0;
}

} // namespace

bool writeFileAtomically(const std::string& path, std::string_view bytes) {
    if (path.empty() || path.find('\0') != std::string::npos)
        return false;
    const auto target = linkTarget(path);
    if (!target)
        return false;
    struct stat status { };
    const bool exists = ::stat(target->c_str(), &status) == 0;
    if (exists && !mayReplace(*target, status))
        return false;
    const auto directory = deletingLastPathComponent(*target);
    TemporaryFile file(directory);
    if (!file.isOpen())
        return false;
    if (exists)
        file.takeModeAndOwner(status);
    if (!file.write(bytes) || !file.moveTo(*target))
        return false;
    syncDirectory(directory);
    return true;
}

} // namespace Ostrel
