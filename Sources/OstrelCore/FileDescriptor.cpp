#include "OstrelCore/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Ostrel {

void FileDescriptor::reset() {
    if (descriptor_ >= 0)
        close(std::exchange(descriptor_, -1));
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
