#include "OstrelCore/Packages/PackageArchive.h"

#include "OstrelCore/Packages/PackageEntryPath.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <locale.h>
#include <optional>
#include <unistd.h>

namespace Ostrel {

namespace {

/// libarchive converts names to the character set of the thread's locale and drops those that do not fit; UTF-8 holds
/// them all.
class UTF8Locale {
public:
    UTF8Locale()
        : locale_(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) { }
    ~UTF8Locale() {
        if (locale_)
            freelocale(locale_);
    }
    UTF8Locale(const UTF8Locale&) = delete;
    UTF8Locale& operator=(const UTF8Locale&) = delete;

    /// In force on this thread while it lives.
    class Scope {
    public:
        explicit Scope(const UTF8Locale& locale)
            : previous_(locale.locale_ ? uselocale(locale.locale_) : nullptr) { }
        ~Scope() {
            if (previous_)
                uselocale(previous_);
        }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        locale_t previous_;
    };

private:
    locale_t locale_;
};

/// The file below libarchive. The library reads the whole list of entries, or the whole target of a link, into memory
/// in one step, so what a step may read is bounded here.
struct Source {
    static constexpr la_int64_t MaxHeaderBytes = la_int64_t{16} << 20;

    int descriptor = -1;
    la_int64_t headerBytesLeft = MaxHeaderBytes;
    bool isReadingHeader = true;
    std::array<char, 65536> buffer;

    static la_ssize_t read(archive* archive, void* self, const void** bytes) {
        auto& source = *static_cast<Source*>(self);
        const auto count = ::read(source.descriptor, source.buffer.data(), source.buffer.size());
        if (source.isReadingHeader)
            source.headerBytesLeft -= count;
        if (count < 0 || source.headerBytesLeft < 0) {
            archive_set_error(archive, EIO, "unreadable or beyond the limits");
            return -1;
        }
        *bytes = source.buffer.data();
        return count;
    }
    static la_int64_t seek(archive*, void* self, la_int64_t offset, int origin) {
        const auto position = lseek(static_cast<Source*>(self)->descriptor, offset, origin);
        return position < 0 ? ARCHIVE_FATAL : position;
    }
    static la_int64_t skip(archive*, void* self, la_int64_t count) {
        return lseek(static_cast<Source*>(self)->descriptor, count, SEEK_CUR) < 0 ? 0 : count;
    }
};

constexpr std::size_t LocalHeaderSize = 30;

unsigned littleEndian16(const char* bytes) {
    return static_cast<unsigned char>(bytes[0]) | static_cast<unsigned>(static_cast<unsigned char>(bytes[1])) << 8;
}

/// The bytes of the name in the local header that lies in the file between the two positions and ends at the second:
///     "PK\3\4"  22 bytes  name length  extra length  name  extra
std::optional<std::string> nameInLocalHeader(int descriptor, la_int64_t from, la_int64_t end) {
    std::string bytes(static_cast<std::size_t>(std::clamp<la_int64_t>(end - from, 0, 2 * 65535 + 30)), '\0');
    const auto count = static_cast<la_int64_t>(bytes.size());
    if (pread(descriptor, bytes.data(), bytes.size(), end - count) != count)
        return std::nullopt;
    for (auto at = bytes.rfind("PK\3\4"); at != std::string::npos; at = at ? bytes.rfind("PK\3\4", at - 1) : at - 1) {
        if (bytes.size() - at < LocalHeaderSize)
            continue;
        const auto nameLength = littleEndian16(&bytes[at + 26]);
        const auto extraLength = littleEndian16(&bytes[at + 28]);
        if (at + LocalHeaderSize + nameLength + extraLength == bytes.size())
            return bytes.substr(at + LocalHeaderSize, nameLength);
    }
    return std::nullopt;
}

PackageEntryKind kindOf(archive_entry* entry) {
    switch (archive_entry_filetype(entry)) {
    case AE_IFREG:
        return PackageEntryKind::file;
    case AE_IFDIR:
        return PackageEntryKind::folder;
    case AE_IFLNK:
        return PackageEntryKind::link;
    default:
        return PackageEntryKind::other;
    }
}

} // namespace

struct PackageArchive::Reader {
    UTF8Locale locale;
    Source source;
    archive* handle = archive_read_new();
    ~Reader() { archive_read_free(handle); }

    bool isMethodSupported() const {
        const std::string_view format = archive_format_name(handle);
        return format.ends_with("(uncompressed)") || format.ends_with("(deflation)");
    }

    /// Where the entry before ended, in the file.
    la_int64_t previousEnd() const { return archive_read_header_position(handle); }
    la_int64_t position() const { return archive_filter_bytes(handle, -1); }

    std::optional<std::string> name(archive_entry* entry) const {
        if (const char* converted = archive_entry_pathname(entry))
            return PackageEntryPath::decoded(converted);
        // A name that is marked as UTF-8 without being it is dropped by the library.
        const auto bytes = nameInLocalHeader(source.descriptor, previousEnd(), position());
        return bytes ? std::optional(PackageEntryPath::decoded(*bytes)) : std::nullopt;
    }
};

std::unique_ptr<PackageArchive> PackageArchive::open(int descriptor) {
    auto reader = std::make_unique<Reader>();
    reader->source.descriptor = descriptor;
    // The list at the archive's end is what counts; a reader that guesses entries from their heads sees other ones.
    archive_read_support_format_zip_seekable(reader->handle);
    archive_read_set_callback_data(reader->handle, &reader->source);
    archive_read_set_read_callback(reader->handle, Source::read);
    archive_read_set_seek_callback(reader->handle, Source::seek);
    archive_read_set_skip_callback(reader->handle, Source::skip);
    if (archive_read_open1(reader->handle) != ARCHIVE_OK)
        return nullptr;
    return std::unique_ptr<PackageArchive>(new PackageArchive(std::move(reader)));
}

PackageArchive::PackageArchive(std::unique_ptr<Reader> reader)
    : reader_(std::move(reader)) { }

PackageArchive::~PackageArchive() = default;

PackageArchive::Step PackageArchive::advance() {
    const UTF8Locale::Scope scope(reader_->locale);
    const bool isFirst = archive_file_count(reader_->handle) == 0;
    archive_entry* entry = nullptr;
    reader_->source.headerBytesLeft = Source::MaxHeaderBytes;
    reader_->source.isReadingHeader = true;
    const int status = archive_read_next_header(reader_->handle, &entry);
    reader_->source.isReadingHeader = false;
    if (status == ARCHIVE_EOF)
        return Step::end;
    if (status != ARCHIVE_OK && status != ARCHIVE_WARN)
        return Step::broken;
    const bool overlaps
        = !isFirst && reader_->position() < reader_->previousEnd() + static_cast<la_int64_t>(LocalHeaderSize);
    const auto name = reader_->name(entry);
    if (overlaps || !name || archive_entry_is_encrypted(entry) || !reader_->isMethodSupported())
        return Step::broken;
    const char* target = archive_entry_symlink(entry);
    entry_ = {*name, kindOf(entry), target ? target : "", archive_entry_size(entry)};
    return Step::entry;
}

bool PackageArchive::readContents(const std::function<bool(std::string_view)>& sink) {
    la_int64_t expected = 0;
    for (;;) {
        const void* bytes = nullptr;
        std::size_t size = 0;
        la_int64_t offset = 0;
        const int status = archive_read_data_block(reader_->handle, &bytes, &size, &offset);
        if (status == ARCHIVE_EOF)
            return true;
        if (status != ARCHIVE_OK || offset != expected || !sink({static_cast<const char*>(bytes), size}))
            return false;
        expected += static_cast<la_int64_t>(size);
    }
}

} // namespace Ostrel
