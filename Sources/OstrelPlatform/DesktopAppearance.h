#pragma once

#include "OstrelPlatform/RGBColor.h"

#include <optional>

namespace Ostrel {

/// How the user's desktop looks. The first question may wait for the desktop's answer, for a bounded time; later ones
/// are answered at once, and a change is followed. Main thread.
class DesktopAppearance {
public:
    virtual ~DesktopAppearance() = default;
    /// Absent when nothing is known.
    virtual std::optional<RGBColor> accentColor() = 0;
    /// Whether the user prefers dark windows; absent without a preference.
    virtual std::optional<bool> prefersDark() = 0;
    /// Of the font of menus and buttons, in points; absent when nothing is known.
    virtual std::optional<double> interfaceFontSize() { return std::nullopt; }
};

} // namespace Ostrel
