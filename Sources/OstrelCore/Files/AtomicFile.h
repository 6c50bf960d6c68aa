#pragma once

#include <string>
#include <string_view>

namespace Ostrel {

/// Replaces the file's contents as a whole: readers see the old bytes or the new ones, and a failure leaves the old
/// ones. A missing file is made. Permissions and owner are kept, a symbolic link stays one and its target is written.
/// False for a folder, a device, a file that may not be written, and when the disk refuses.
[[nodiscard]] bool writeFileAtomically(const std::string& path, std::string_view bytes);

} // namespace Ostrel
