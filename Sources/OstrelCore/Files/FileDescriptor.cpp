#include "OstrelCore/Files/FileDescriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Ostrel {

void FileDescriptor::reset() {
    if (descriptor_ >= 0)
        close(std::exchange(descriptor_, -1));
}

FileDescriptor openFile(const std::string& path) {
    return FileDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
}

std::optional<std::string> contentsOf(const FileDescriptor& file, std::size_t maxSize) {
    struct stat status { };
    if (!file || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)
        || static_cast<std::size_t>(status.st_size) > maxSize)
        return std::nullopt;
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t length = 0;
    while (length < bytes.size()) {
        const auto count
            = ::pread(file.get(), bytes.data() + length, bytes.size() - length, static_cast<off_t>(length));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return std::nullopt;
        if (count == 0)
            break;
        length += static_cast<std::size_t>(count);
    }
    bytes.resize(length);
    return bytes;
}

FileDescriptor openFolder(int parent, const char* name) {
    return FileDescriptor(openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

FileDescriptor makePrivateFolder(int parent, const char* name) {
    // The umask may take bits that the owner needs, so the mode is set once more.
    if (mkdirat(parent, name, S_IRWXU) != 0 || fchmodat(parent, name, S_IRWXU, 0) != 0)
        return {};
    return openFolder(parent, name);
}

} // namespace Ostrel
