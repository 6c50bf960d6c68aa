#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// An entry as it is to stand in the archive, sane or not.
struct ZipEntry {
    std::string name;
    std::string data;
    std::uint16_t flags = 0;
    std::uint16_t method = 0;
    /// Unix file type and mode; 0 for an entry made on Windows.
    std::uint32_t mode = 0;
    /// What the archive claims the data to become; by default its size, as for stored data.
    std::int64_t claimedSize = -1;
    /// Extra fields, as of `unicodePathField`.
    std::string extra = {};
};

constexpr std::uint16_t ZipEncryptedFlag = 1;
constexpr std::uint16_t ZipUTF8Flag = 1 << 11;
constexpr std::uint16_t ZipDeflate = 8;

/// A zip archive, byte by byte: local entries, their list, the end record.
class ZipBuilder {
public:
    ZipBuilder& add(ZipEntry entry);
    /// Only in the list, so many times: the entry's contents are what stands at `offset` of the archive.
    ZipBuilder& addListed(const ZipEntry& entry, std::size_t offset, std::size_t times = 1);

    std::size_t size() const { return local_.size(); }
    std::string build() const;

private:
    std::string local_;
    std::string list_;
    std::size_t count_ = 0;
};

/// The extra field with which packers of another code page tell the name in UTF-8.
std::string unicodePathField(std::string_view name, std::string_view utf8Name);
/// The archive with the footer of a package behind it: its length, flags, a mark.
std::string withPackageFooter(std::string archive);
/// A zip archive with one deflated file of so many zero bytes.
std::string zipOfZeros(std::string_view name, std::size_t size);

} // namespace Ostrel
