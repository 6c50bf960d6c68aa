#pragma once

#include "OstrelEngine/Geometry.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Ostrel {

/// What a measure asks the widget's host to show: a field for one line of text.
struct InputTextPresentation {
    std::string measureName;
    /// Widget coordinates.
    Rect frame;
    /// Shown at first.
    std::string defaultValue;
    /// Losing the focus, a click outside included, dismisses the field.
    bool focusDismiss = true;
    bool isPassword = false;
    /// The most characters, above 0; absent without a limit.
    std::optional<std::int64_t> inputLimit;
    bool numericOnly = false;

    friend bool operator==(const InputTextPresentation&, const InputTextPresentation&) = default;
};

} // namespace Ostrel
