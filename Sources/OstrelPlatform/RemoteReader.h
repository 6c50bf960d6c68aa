#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace Ostrel {

/// Reads the bytes behind an http or https URL, blocking the caller for a bounded time and up to a bounded size. Absent
/// on any failure, redirects beyond the limit included.
class RemoteReader {
public:
    virtual ~RemoteReader() = default;
    virtual std::optional<std::string> read(const std::string& url) = 0;
};

} // namespace Ostrel
