#include "OstrelCore/Packages/PackageExtractor.h"

#include "OstrelCore/Files/FileDescriptor.h"
#include "OstrelCore/Packages/PackageArchive.h"
#include "OstrelCore/Packages/PackageEntryPath.h"
#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Ostrel::PackageExtractor {

namespace {

/// Copies of resource forks, which some packers add beside the skin's own folders.
constexpr std::string_view ResourceForkFolder = "__MACOSX";

bool isResourceFork(std::string_view path) {
    return path == ResourceForkFolder
        || (path.starts_with(ResourceForkFolder) && path[ResourceForkFolder.size()] == '/');
}

bool writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count = write(file, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return true;
}

/// The destination. Every step down is taken from an open folder and through no link, so nothing that stands or appears
/// below it leads a file elsewhere.
class DestinationTree {
public:
    DestinationTree(const std::string& path, std::int64_t maxFiles)
        : root_(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
        , filesLeft_(maxFiles) { }

    explicit operator bool() const { return static_cast<bool>(root_); }

    bool makeFolder(std::string_view path) { return folder(path) >= 0; }

    /// A new file, or an earlier one of the same name emptied.
    FileDescriptor makeFile(std::string_view path) {
        const auto slash = path.rfind('/');
        const int parent = folder(slash == std::string_view::npos ? "" : path.substr(0, slash));
        if (parent < 0 || --filesLeft_ < 0)
            return {};
        const std::string name(path.substr(slash + 1));
        constexpr int Flags = O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC;
        FileDescriptor file(openat(parent, name.c_str(), Flags, S_IRUSR | S_IWUSR));
        if (file && fchmod(file.get(), S_IRUSR | S_IWUSR) != 0)
            file.reset();
        return file;
    }

private:
    /// Entries of one folder follow each other, so the last folder is kept open. Below 0 when there is no way to it.
    int folder(std::string_view path) {
        if (path.empty())
            return root_.get();
        if (current_ && path == currentPath_)
            return current_.get();
        currentPath_ = path;
        current_.reset();
        for (const auto component : split(currentPath_, '/')) {
            current_ = child(current_ ? current_.get() : root_.get(), std::string(component));
            if (!current_)
                return -1;
        }
        return current_.get();
    }

    FileDescriptor child(int parent, const std::string& name) {
        if (auto existing = openFolder(parent, name.c_str()))
            return existing;
        return --filesLeft_ < 0 ? FileDescriptor() : makePrivateFolder(parent, name.c_str());
    }

    FileDescriptor root_;
    FileDescriptor current_;
    std::string currentPath_;
    std::int64_t filesLeft_;
};

std::int64_t allowedBytes(int package, const PackageLimits& limits) {
    struct stat status = {};
    if (fstat(package, &status) != 0)
        return 0;
    const auto packed = std::min<std::int64_t>(status.st_size, limits.bytes);
    return std::min(limits.bytes, limits.bytesOfAnyPackage + limits.ratio * packed);
}

bool writeFile(PackageArchive& archive, DestinationTree& destination, std::string_view path, std::int64_t& bytesLeft) {
    if (archive.entry().size > bytesLeft)
        return false;
    const auto file = destination.makeFile(path);
    return file && archive.readContents([&](std::string_view bytes) {
        bytesLeft -= static_cast<std::int64_t>(bytes.size());
        return bytesLeft >= 0 && writeAll(file.get(), bytes);
    });
}

bool extractEntry(PackageArchive& archive, DestinationTree& destination, std::int64_t& bytesLeft) {
    const auto& entry = archive.entry();
    const auto path = PackageEntryPath::relativePath(entry.name);
    if (!path)
        return false;
    const bool namesFolder = entry.name.ends_with('/') || entry.name.ends_with('\\') || path->empty();
    if (isResourceFork(*path))
        return true;
    switch (entry.kind) {
    case PackageEntryKind::link:
        return !PackageEntryPath::isLinkOutside(*path, entry.linkTarget);
    case PackageEntryKind::other:
        return false;
    case PackageEntryKind::folder:
        return destination.makeFolder(*path);
    case PackageEntryKind::file:
        return namesFolder ? destination.makeFolder(*path) : writeFile(archive, destination, *path, bytesLeft);
    }
    return false;
}

} // namespace

bool extract(int package, const std::string& destination, const PackageLimits& limits) {
    const auto archive = PackageArchive::open(package);
    DestinationTree tree(destination, limits.files);
    if (!archive || !tree)
        return false;
    auto bytesLeft = allowedBytes(package, limits);
    auto entriesLeft = limits.entries;
    for (;;) {
        switch (archive->advance()) {
        case PackageArchive::Step::end:
            return true;
        case PackageArchive::Step::broken:
            return false;
        case PackageArchive::Step::entry:
            if (--entriesLeft < 0 || !extractEntry(*archive, tree, bytesLeft))
                return false;
        }
    }
}

} // namespace Ostrel::PackageExtractor
