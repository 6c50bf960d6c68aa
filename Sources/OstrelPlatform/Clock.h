#pragma once

namespace Ostrel {

/// Time as the engine knows it. Main thread.
class Clock {
public:
    virtual ~Clock() = default;
    /// Seconds since the system started, monotonic. Any thread.
    virtual double uptimeSeconds() const = 0;
    /// Seconds since 1970-01-01 00:00:00 UTC, with their fraction.
    virtual double wallSeconds() const = 0;
};

} // namespace Ostrel
