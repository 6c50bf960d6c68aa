#include "OstrelCore/Packages/PackageCache.h"

#include "OstrelCore/Files/FileDescriptor.h"
#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Packages/PackageExtractor.h"
#include "OstrelCore/Text/Numbers.h"

#include <array>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace Ostrel {

namespace {

/// An open package, so that the file that is told from others by its key is the file that is unpacked, even when
/// another takes its place meanwhile.
struct OpenPackage {
    FileDescriptor file;
    struct stat status = {};

    static std::optional<OpenPackage> open(const std::string& path) {
        // Not to wait for a writer, should it be a pipe.
        OpenPackage package{FileDescriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC))};
        if (!package.file || fstat(package.file.get(), &package.status) != 0 || !S_ISREG(package.status.st_mode))
            return std::nullopt;
        return package;
    }

    bool isUnchanged() const {
        struct stat now = {};
        return fstat(file.get(), &now) == 0 && now.st_size == status.st_size
            && now.st_mtim.tv_sec == status.st_mtim.tv_sec && now.st_mtim.tv_nsec == status.st_mtim.tv_nsec;
    }
};

std::string cacheKey(const std::string& path, const struct stat& status) {
    std::error_code failed;
    const auto resolved = std::filesystem::canonical(path, failed);
    const double seconds
        = static_cast<double>(status.st_mtim.tv_sec) + static_cast<double>(status.st_mtim.tv_nsec) / 1e9;
    return (failed ? path : resolved.string()) + "|" + formatInteger(status.st_size) + "|" + formatShortest(seconds);
}

/// A random UUID in upper case.
std::string uniqueName() {
    std::random_device random;
    std::array<unsigned, 16> bytes;
    for (auto& byte : bytes)
        byte = random() & 0xFF;
    bytes[6] = (bytes[6] & 0x0F) | 0x40;
    bytes[8] = (bytes[8] & 0x3F) | 0x80;
    std::string name;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10)
            name.push_back('-');
        name.push_back("0123456789ABCDEF"[bytes[i] >> 4]);
        name.push_back("0123456789ABCDEF"[bytes[i] & 15]);
    }
    return name;
}

struct PrivateFolder {
    std::string path;
    FileDescriptor descriptor;
};

/// The folder of that name when it is this user's own, made if need be. In a temporary folder that users share another
/// one may have taken the name, and could then change what is unpacked there.
std::optional<PrivateFolder> ownFolder(std::string path) {
    auto folder = openFolder(AT_FDCWD, path.c_str());
    if (!folder)
        folder = makePrivateFolder(AT_FDCWD, path.c_str());
    if (!folder) // Another thread or process may just have made it.
        folder = openFolder(AT_FDCWD, path.c_str());
    struct stat status = {};
    if (!folder || fstat(folder.get(), &status) != 0 || status.st_uid != geteuid()
        || fchmod(folder.get(), S_IRWXU) != 0)
        return std::nullopt;
    return PrivateFolder{std::move(path), std::move(folder)};
}

std::optional<PrivateFolder> ensureExtractionRootExists() {
    std::error_code failed;
    const auto temporary = std::filesystem::temp_directory_path(failed).string();
    if (failed)
        return std::nullopt;
    const auto path = appendingPathComponent(temporary, PackageCache::ExtractionRootDirectoryName);
    if (auto root = ownFolder(path))
        return root;
    return ownFolder(path + "-" + formatInteger(geteuid()));
}

std::optional<std::string> extracted(const OpenPackage& package) {
    const auto root = ensureExtractionRootExists();
    if (!root)
        return std::nullopt;
    const auto name = uniqueName();
    if (!makePrivateFolder(root->descriptor.get(), name.c_str()))
        return std::nullopt;
    auto destination = appendingPathComponent(root->path, name);
    if (PackageExtractor::extract(package.file.get(), destination) && package.isUnchanged())
        return destination;
    std::error_code ignored;
    std::filesystem::remove_all(destination, ignored);
    return std::nullopt;
}

} // namespace

PackageCache& PackageCache::shared() {
    static PackageCache cache;
    return cache;
}

std::optional<std::string> PackageCache::extractedDirectory(const std::string& packagePath) {
    const auto package = OpenPackage::open(packagePath);
    if (!package)
        return std::nullopt;
    const auto key = cacheKey(packagePath, package->status);
    if (auto directory = cached(key))
        return directory;
    auto directory = extracted(*package);
    if (directory) {
        const std::lock_guard lock(cacheLock_);
        extractedPackagesByKey_[key] = *directory;
    }
    return directory;
}

PackageCache::Entries PackageCache::entries() {
    const std::lock_guard lock(cacheLock_);
    return extractedPackagesByKey_;
}

void PackageCache::adopt(const Entries& entries) {
    const std::lock_guard lock(cacheLock_);
    extractedPackagesByKey_.insert(entries.begin(), entries.end());
}

std::optional<std::string> PackageCache::cached(const std::string& key) {
    const std::lock_guard lock(cacheLock_);
    const auto found = extractedPackagesByKey_.find(key);
    std::error_code failed;
    if (found == extractedPackagesByKey_.end() || !std::filesystem::is_directory(found->second, failed))
        return std::nullopt;
    return found->second;
}

} // namespace Ostrel
