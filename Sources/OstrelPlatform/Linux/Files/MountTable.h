#pragma once

#include "OstrelPlatform/Linux/Host/ProcFile.h"

#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// Where volumes are mounted that could hold trash of their own. Left out are the kernel's own file systems, those that
/// mount something when they are looked at, and servers: one that is gone would hold up whoever asks for minutes.
class MountTable {
public:
    explicit MountTable(std::string mountInfoFile = "/proc/self/mountinfo");

    /// As of now, in mounting order, each folder once. The table is read at each call and parsed when it changed. The
    /// reference lives until the next call.
    const std::vector<std::string>& volumes();

    static std::vector<std::string> parse(std::string_view mountInfo);

private:
    ProcFile file_;
    std::string text_;
    std::vector<std::string> volumes_;
};

} // namespace Ostrel
