#include "OstrelCore/Documents/FileProvider.h"

#include "OstrelCore/Documents/TextDecoding.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Ostrel {

namespace {

class FileDescriptor {
public:
    explicit FileDescriptor(const std::string& path)
        // Opening a pipe that nobody writes to must not wait.
        : value_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) { }
    ~FileDescriptor() {
        if (value_ >= 0)
            ::close(value_);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int value() const { return value_; }

private:
    int value_;
};

/// The size of a regular file; absent for anything else.
std::optional<std::size_t> regularFileSize(const FileDescriptor& file) {
    struct stat status { };
    if (file.value() < 0 || ::fstat(file.value(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return static_cast<std::size_t>(status.st_size);
}

/// All bytes; absent when reading fails or there are more than `limit`, whatever size the file claims to have.
std::optional<std::string> readBytes(const std::string& path, std::size_t limit) {
    const FileDescriptor file(path);
    const auto size = regularFileSize(file);
    if (!size || *size > limit)
        return std::nullopt;
    std::string bytes(*size + 1, '\0');
    std::size_t filled = 0;
    for (;;) {
        const auto count = ::read(file.value(), bytes.data() + filled, bytes.size() - filled);
        if (count < 0)
            return std::nullopt;
        filled += static_cast<std::size_t>(count);
        if (filled > limit)
            return std::nullopt;
        if (count == 0)
            break;
        if (filled == bytes.size())
            bytes.resize(bytes.size() * 2);
    }
    bytes.resize(filled);
    return bytes;
}

} // namespace

std::optional<std::string> DiskFileProvider::contentsOfFile(const std::string& path) {
    const auto existing = listings_.existingPath(path);
    auto bytes = existing ? readBytes(*existing, MaxFileSize) : std::nullopt;
    if (!bytes)
        return std::nullopt;
    return decodeText(std::move(*bytes));
}

bool DiskFileProvider::fileExists(const std::string& path) {
    return listings_.existingPath(path).has_value();
}

std::optional<std::string> InMemoryFileProvider::contentsOfFile(const std::string& path) {
    const auto file = files_.find(path);
    return file == files_.end() ? std::nullopt : std::optional(file->second);
}

} // namespace Ostrel
