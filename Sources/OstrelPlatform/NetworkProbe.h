#pragma once

#include <functional>
#include <optional>
#include <string>

namespace Ostrel {

/// Measures how long an address takes to answer. Main thread.
class NetworkProbe {
public:
    virtual ~NetworkProbe() = default;
    /// `done` gets the milliseconds on the main thread, absent when nothing came in time or the name is unknown. It is
    /// never called when the probe has ended.
    virtual void ping(const std::string& address, double timeoutMs, std::function<void(std::optional<double>)> done)
        = 0;
};

} // namespace Ostrel
