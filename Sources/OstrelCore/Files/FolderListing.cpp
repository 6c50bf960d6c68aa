#include "OstrelCore/Files/FolderListing.h"

#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Ostrel {

namespace {

constexpr std::size_t BufferBytes = 1 << 16;

bool isFolder(int parent, const char* name, unsigned char type) {
    if (type != DT_UNKNOWN)
        return type == DT_DIR;
    struct stat status = {};
    return fstatat(parent, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

bool isSelfOrParent(const char* name) {
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

} // namespace

bool FolderListing::read(int folder) {
    entries_.clear();
    buffer_.resize(BufferBytes);
    if (lseek(folder, 0, SEEK_SET) != 0)
        return false;
    for (;;) {
        // The buffer of a string is aligned for any record.
        const auto length = getdents64(folder, buffer_.data(), buffer_.size());
        if (length < 0)
            entries_.clear();
        if (length <= 0)
            return length == 0;
        for (ssize_t offset = 0; offset < length;) {
            const auto* entry = reinterpret_cast<const dirent64*>(buffer_.data() + offset);
            if (!isSelfOrParent(entry->d_name))
                add(folder, entry->d_name, entry->d_type);
            offset += entry->d_reclen;
        }
    }
}

void FolderListing::add(int folder, const char* name, unsigned char type) {
    entries_ += isFolder(folder, name, type) ? Folder : Other;
    entries_.append(name, std::strlen(name) + 1);
}

} // namespace Ostrel
