#pragma once

#include "OstrelEngine/Full/FullSkinHost.h"

#include <string>
#include <string_view>
#include <unordered_map>

namespace Ostrel {

class Clock;

/// The log of one skin: a text that comes again within a minute is dropped.
class SkinLog {
public:
    SkinLog(FullSkinHost& host, const Clock& clock)
        : host_(host)
        , clock_(clock) { }

    void write(LogLevel level, std::string_view section, std::string_view text);

private:
    FullSkinHost& host_;
    const Clock& clock_;
    /// When each section's text was written last.
    std::unordered_map<std::string, double> times_;
};

} // namespace Ostrel
