#pragma once

#include <string>
#include <string_view>

namespace Ostrel {

/// A folder of its own, removed with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return path_; }
    /// Writes a file, folders included, and gives its path.
    std::string write(std::string_view relativePath, std::string_view bytes) const;

private:
    std::string path_;
};

} // namespace Ostrel
