#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

/// A file of /proc that is kept open: each read gives what it says then.
class ProcFile {
public:
    explicit ProcFile(std::string path);
    ~ProcFile();
    ProcFile(const ProcFile&) = delete;
    ProcFile& operator=(const ProcFile&) = delete;

    /// The beginning of the file, at most `maximumBytes`, until the next read. Absent on failure; the next read then
    /// opens it anew.
    std::optional<std::string_view> read(std::size_t maximumBytes);

private:
    bool open();
    void close();

    std::string path_;
    int descriptor_ = -1;
    std::string buffer_;
};

} // namespace Ostrel
