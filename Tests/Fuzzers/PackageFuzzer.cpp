// A package of any bytes: it is unpacked or refused within its limits, and nothing appears beside the destination.

#include "OstrelCore/Files/FileDescriptor.h"
#include "OstrelCore/Packages/PackageExtractor.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr Ostrel::PackageLimits Limits{.entries = 200, .files = 100, .bytes = 1 << 20, .bytesOfAnyPackage = 1 << 20};

std::uintmax_t bytesBelow(const fs::path& folder) {
    std::uintmax_t bytes = 0;
    std::int64_t files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_symlink() || ++files > Limits.files)
            std::abort();
        if (entry.is_regular_file())
            bytes += entry.file_size();
    }
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fs::path box = fs::temp_directory_path() / ("ostrel-fuzz-" + std::to_string(getpid()));
    const auto destination = box / "inner" / "destination";
    fs::create_directories(destination);
    const Ostrel::FileDescriptor package(memfd_create("package", MFD_CLOEXEC));
    if (write(package.get(), data, size) != static_cast<ssize_t>(size) || lseek(package.get(), 0, SEEK_SET) != 0)
        std::abort();
    (void)Ostrel::PackageExtractor::extract(package.get(), destination, Limits);
    if (bytesBelow(destination) > static_cast<std::uintmax_t>(Limits.bytes))
        std::abort();
    fs::remove_all(destination);
    // Only the empty folder around the destination may be left.
    if (!fs::remove(box / "inner") || !fs::remove(box))
        std::abort();
    return 0;
}
