#pragma once

#include <optional>

namespace Ostrel {

/// Components 0 to 1.
struct AccentColor {
    double red = 0;
    double green = 0;
    double blue = 0;

    friend bool operator==(const AccentColor&, const AccentColor&) = default;
};

/// How the user's desktop looks. The first question may wait for the desktop's answer, for a bounded time; later ones
/// are answered at once, and a change is followed. Main thread.
class DesktopAppearance {
public:
    virtual ~DesktopAppearance() = default;
    /// Absent when nothing is known.
    virtual std::optional<AccentColor> accentColor() = 0;
    /// Whether the user prefers dark windows; absent without a preference.
    virtual std::optional<bool> prefersDark() = 0;
};

} // namespace Ostrel
