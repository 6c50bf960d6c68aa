#pragma once

#include "OstrelEngine/Geometry.h"

#include <optional>
#include <string>
#include <string_view>

// `$MouseX$` and its kin in the text of an action.
namespace Ostrel::MouseVariables {

enum class Decimals {
    /// As many as say something, at most six: what the actions of a measure get.
    asNeeded,
    /// Whole numbers: what the actions of a meter get.
    none,
};

/// The six literals replaced, in that spelling only. `source` is the frame of the meter that the pointer belongs to;
/// without one the relative forms count from the widget's corner and the percentages are 0.
std::string substitute(std::string_view text, Point point, const std::optional<Rect>& source, Decimals decimals);

} // namespace Ostrel::MouseVariables
