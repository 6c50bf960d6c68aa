#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

namespace Ostrel {

/// Owns an open file or folder of the operating system and closes it; false when there is none.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor)
        : descriptor_(descriptor) { }
    ~FileDescriptor() { reset(); }
    FileDescriptor(FileDescriptor&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, -1)) { }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            reset();
            descriptor_ = std::exchange(other.descriptor_, -1);
        }
        return *this;
    }

    int get() const { return descriptor_; }
    explicit operator bool() const { return descriptor_ >= 0; }
    void reset();

private:
    int descriptor_ = -1;
};

/// For reading; a link at the end of the path is followed. Does not wait for a writer, should it be a pipe.
FileDescriptor openFile(const std::string& path);
/// All bytes of an open file. Absent for what is no file, is larger than `maxSize`, or cannot be read.
std::optional<std::string> contentsOf(const FileDescriptor& file, std::size_t maxSize);

/// The folder `name` in the folder `parent` (or `AT_FDCWD`); false when it is missing, no folder, a link, or out of
/// reach.
FileDescriptor openFolder(int parent, const char* name);
/// Makes the folder, private to the user whatever the umask, and opens it. False when something of that name is there.
FileDescriptor makePrivateFolder(int parent, const char* name);

} // namespace Ostrel
