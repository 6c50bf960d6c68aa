#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Ostrel {

/// The packages that this application has unpacked: its processes tell each other. What was unpacked stays on disk for
/// as long as the system keeps the temporary folder, since widgets live from it. Any thread may call.
class PackageCache {
public:
    /// Below the temporary folder.
    static constexpr std::string_view ExtractionRootDirectoryName = "OstrelRMSkinExtraction";

    static PackageCache& shared();

    /// The folder with the package's contents, unpacked now if the file was not before or has changed since. Absent
    /// when it cannot be unpacked; then nothing of it stays on disk.
    std::optional<std::string> extractedDirectory(const std::string& packagePath);

    /// What tells a package of that path, size and time from others, and the folder of its contents.
    using Entries = std::unordered_map<std::string, std::string>;
    /// What is known so far; for other processes of the same application.
    Entries entries();
    /// Takes what another process has unpacked. Packages that are known already stay as they are.
    void adopt(const Entries& entries);

private:
    std::optional<std::string> cached(const std::string& key);

    /// Held for the map and one look at the disk, never for the unpacking: of two threads with the same package both
    /// unpack, and the later folder stays.
    std::mutex cacheLock_;
    Entries extractedPackagesByKey_;
};

} // namespace Ostrel
