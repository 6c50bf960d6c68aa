#include "Support/ZipBuilder.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>

namespace Ostrel {

namespace {

void append(std::string& bytes, std::uint64_t value, int count) {
    for (int i = 0; i < count; ++i)
        bytes.push_back(static_cast<char>(value >> (8 * i) & 0xFF));
}

std::uint32_t checksum(std::string_view data) {
    std::uint32_t crc = ~0U;
    for (const char byte : data) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320U : 0);
    }
    return ~crc;
}

/// The fields that an entry has both in front of its data and in the list.
void appendCommon(std::string& bytes, const ZipEntry& entry) {
    append(bytes, 20, 2);
    append(bytes, entry.flags, 2);
    append(bytes, entry.method, 2);
    append(bytes, 0, 4);
    append(bytes, checksum(entry.data), 4);
    append(bytes, entry.data.size(), 4);
    append(bytes, entry.claimedSize < 0 ? entry.data.size() : static_cast<std::uint64_t>(entry.claimedSize), 4);
    append(bytes, entry.name.size(), 2);
    append(bytes, entry.extra.size(), 2);
}

} // namespace

ZipBuilder& ZipBuilder::add(ZipEntry entry) {
    addListed(entry, local_.size());
    local_ += "PK\3\4";
    appendCommon(local_, entry);
    local_ += entry.name + entry.extra + entry.data;
    return *this;
}

ZipBuilder& ZipBuilder::addListed(const ZipEntry& entry, std::size_t offset, std::size_t times) {
    std::string listed = "PK\1\2";
    append(listed, entry.mode ? 3U << 8 | 20 : 20, 2);
    appendCommon(listed, entry);
    append(listed, 0, 6);
    append(listed, std::uint64_t{entry.mode} << 16, 4);
    append(listed, offset, 4);
    listed += entry.name + entry.extra;
    for (std::size_t i = 0; i < times; ++i)
        list_ += listed;
    count_ += times;
    return *this;
}

std::string ZipBuilder::build() const {
    std::string bytes = local_ + list_ + "PK\5\6";
    append(bytes, 0, 4);
    append(bytes, std::min<std::size_t>(count_, 0xFFFF), 2);
    append(bytes, std::min<std::size_t>(count_, 0xFFFF), 2);
    append(bytes, list_.size(), 4);
    append(bytes, local_.size(), 4);
    append(bytes, 0, 2);
    return bytes;
}

std::string unicodePathField(std::string_view name, std::string_view utf8Name) {
    std::string field;
    append(field, 0x7075, 2);
    append(field, 5 + utf8Name.size(), 2);
    append(field, 1, 1);
    append(field, checksum(name), 4);
    return field.append(utf8Name);
}

std::string withPackageFooter(std::string archive) {
    const auto size = archive.size();
    append(archive, size, 8);
    return archive + '\0' + "RMSKIN" + '\0';
}

std::string zipOfZeros(std::string_view name, std::size_t size) {
    std::string bytes(size / 500 + 1000, '\0');
    std::size_t used = 0;
    archive* const writer = archive_write_new();
    archive_write_set_format_zip(writer);
    archive_write_set_bytes_per_block(writer, 0);
    archive_write_open_memory(writer, bytes.data(), bytes.size(), &used);
    archive_entry* const entry = archive_entry_new();
    archive_entry_set_pathname(entry, std::string(name).c_str());
    archive_entry_set_filetype(entry, AE_IFREG);
    archive_entry_set_size(entry, static_cast<la_int64_t>(size));
    archive_write_header(writer, entry);
    const std::string zeros(1 << 20, '\0');
    for (std::size_t left = size; left > 0; left -= std::min(left, zeros.size()))
        archive_write_data(writer, zeros.data(), std::min(left, zeros.size()));
    archive_entry_free(entry);
    archive_write_close(writer);
    archive_write_free(writer);
    bytes.resize(used);
    return bytes;
}

} // namespace Ostrel
