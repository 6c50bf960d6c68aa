#include "OstrelCLI/SparedTrash.h"

#include <algorithm>
#include <string>

namespace Ostrel {

RecycleBinSnapshot SparedTrash::snapshot(const std::string& drives) {
    const auto real = trash_.snapshot(drives);
    const auto& emptied = emptied_[drives];
    return {std::max<std::int64_t>(0, real.itemCount - emptied.itemCount),
        std::max<std::int64_t>(0, real.totalSize - emptied.totalSize)};
}

std::int64_t SparedTrash::itemCount(const std::string& drives) {
    return std::max<std::int64_t>(0, trash_.itemCount(drives) - emptied_[drives].itemCount);
}

} // namespace Ostrel
