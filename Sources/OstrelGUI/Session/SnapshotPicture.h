#pragma once

#include "OstrelCore/Files/FileDescriptor.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace Ostrel {

/// A PNG of a widget, never changed. It is in memory, or still in the file that it was read from: a library has a
/// thousand pictures that nobody looks at until its window opens.
class SnapshotPicture {
public:
    /// Base64 within a file that is kept open, so that the bytes stay there whatever becomes of its name.
    struct Stored {
        std::shared_ptr<const FileDescriptor> file;
        std::int64_t offset = 0;
        std::size_t length = 0;
    };

    explicit SnapshotPicture(std::string bytes)
        : bytes_(std::make_shared<const std::string>(std::move(bytes))) { }
    explicit SnapshotPicture(Stored stored)
        : stored_(std::move(stored)) { }

    /// The same object for as long as anyone holds it. Null when it cannot be read or is no base64. Main thread.
    std::shared_ptr<const std::string> bytes() const;
    /// Empty when it cannot be read or is no base64. Any thread.
    std::string base64() const;

private:
    std::string storedText() const;

    std::shared_ptr<const std::string> bytes_;
    Stored stored_;
    /// What was read last.
    mutable std::weak_ptr<const std::string> read_;
};

/// Whether both show the same, by their bytes; null is like null only.
bool areSamePicture(const std::shared_ptr<const SnapshotPicture>& a, const std::shared_ptr<const SnapshotPicture>& b);

} // namespace Ostrel
