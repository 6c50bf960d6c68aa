#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace Ostrel {

/// What ended the process that this one goes on for.
struct EarlierEnd {
    /// The file of the skin that it was working for; empty when it was working for none.
    std::string skin;
    /// A sentence for the user.
    std::string message;
    /// Ends within the last minute, this one among them.
    std::size_t recentEnds = 0;

    /// Whether going on would only end again.
    bool isOneTooMany() const { return recentEnds >= 3; }
};

/// Starts the program again where it stands when a fatal signal or a fault of its own ends it, as a formula or a
/// picture may: same process, no arguments, the widgets from the session. The new start is told by the environment what
/// ended the old one. One at a time, on the main thread.
class CrashGuard {
public:
    /// Takes what an earlier end has left in the environment, so that no child sees it. Once, before the guard.
    static std::optional<EarlierEnd> takeEarlierEnd();

    CrashGuard();
    /// From here on a fault ends the program.
    ~CrashGuard();
    CrashGuard(const CrashGuard&) = delete;
    CrashGuard& operator=(const CrashGuard&) = delete;
};

} // namespace Ostrel
