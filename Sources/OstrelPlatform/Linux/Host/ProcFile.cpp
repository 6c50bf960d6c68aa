#include "OstrelPlatform/Linux/Host/ProcFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace Ostrel {

namespace {
constexpr std::size_t InitialBytes = 2 << 10;
}

ProcFile::ProcFile(std::string path)
    : path_(std::move(path)) { }

ProcFile::~ProcFile() {
    close();
}

bool ProcFile::open() {
    if (descriptor_ < 0)
        descriptor_ = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC);
    return descriptor_ >= 0;
}

void ProcFile::close() {
    if (descriptor_ >= 0)
        ::close(std::exchange(descriptor_, -1));
}

std::optional<std::string_view> ProcFile::read(std::size_t maximumBytes) {
    if (!open())
        return std::nullopt;
    std::size_t filled = 0;
    while (filled < maximumBytes) {
        // Most files are small; the buffer keeps the size that one turned out to need.
        if (filled == buffer_.size())
            buffer_.resize(std::min(maximumBytes, std::max(InitialBytes, filled * 2)));
        const auto count
            = pread(descriptor_, buffer_.data() + filled, buffer_.size() - filled, static_cast<off_t>(filled));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0) {
            close();
            return std::nullopt;
        }
        if (count == 0)
            break;
        filled += static_cast<std::size_t>(count);
    }
    return std::string_view(buffer_).substr(0, filled);
}

} // namespace Ostrel
