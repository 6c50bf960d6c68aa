#pragma once

#include <cstdint>
#include <string>

namespace Ostrel {

/// What a package may cost. A package beyond it is refused as a whole.
struct PackageLimits {
    std::int64_t entries = 65'536;
    /// Files and folders made; a name can stand for many folders.
    std::int64_t files = 65'536;
    std::int64_t bytes = std::int64_t{1} << 30;
    /// Contents may be this many times as large as the package, beyond an amount that any package may have.
    std::int64_t ratio = 100;
    std::int64_t bytesOfAnyPackage = std::int64_t{32} << 20;
};

namespace PackageExtractor {

/// Writes the files of the zip archive in the open file `package` below the folder `destination`, which exists and is
/// empty. New folders and files are private to the user whatever the umask; modes, owners and times of the package
/// count for nothing. Links that stay inside the package are left out, and so are the resource forks of another system.
/// False when the package is broken, encrypted, hostile (paths or links that lead elsewhere, devices, limits) or cannot
/// be written; what has been written by then is left to the caller.
[[nodiscard]] bool extract(int package, const std::string& destination, const PackageLimits& limits = {});

} // namespace PackageExtractor
} // namespace Ostrel
