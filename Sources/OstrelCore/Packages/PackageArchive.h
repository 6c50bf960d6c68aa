#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace Ostrel {

enum class PackageEntryKind { file, folder, link, other };

struct PackageEntry {
    /// As UTF-8 text, not yet checked; backslashes may separate folders.
    std::string name;
    PackageEntryKind kind = PackageEntryKind::file;
    /// Of a link, unchecked.
    std::string linkTarget;
    /// As the package claims.
    std::int64_t size = 0;
};

/// The zip archive inside a package, read entry by entry in the order of the file. Bytes behind the archive, such as a
/// package's footer, are passed over. Only stored and deflated entries are read, the two that packages have: other
/// methods would let a package choose how much memory its reading takes.
class PackageArchive {
public:
    /// Null when the open file is no zip archive. The descriptor is borrowed and must outlive the archive.
    static std::unique_ptr<PackageArchive> open(int descriptor);
    ~PackageArchive();
    PackageArchive(const PackageArchive&) = delete;
    PackageArchive& operator=(const PackageArchive&) = delete;

    /// Moves to the next entry. Broken also for an archive that is encrypted or reads a part of the file twice; nothing
    /// more can be read then.
    enum class Step { entry, end, broken };
    Step advance();
    /// The entry of the last step.
    const PackageEntry& entry() const { return entry_; }
    /// Hands the contents of the entry over in pieces, until the sink returns false. True when all went over and the
    /// checksum is right.
    bool readContents(const std::function<bool(std::string_view)>& sink);

private:
    struct Reader;
    explicit PackageArchive(std::unique_ptr<Reader> reader);

    std::unique_ptr<Reader> reader_;
    PackageEntry entry_;
};

} // namespace Ostrel
