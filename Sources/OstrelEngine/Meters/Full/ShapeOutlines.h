#pragma once

#include "OstrelEngine/Meters/Full/ShapeStroke.h"

#include <cstddef>
#include <optional>
#include <string_view>

/// Outlines out of the text of options, before any transformation. Coordinates are held within a million points.
namespace Ostrel::ShapeOutlines {

/// The kinds Rectangle, Ellipse, Line, Arc and Curve with their numbers. Absent when the kind is another or a number
/// is missing.
std::optional<ShapeOutline> basicShape(std::string_view kind, std::string_view numbers);

/// "X,Y | segment | segment ...". Absent when a segment cannot be read or the path has more elements than `most`.
std::optional<ShapeOutline> path(std::string_view text, bool isNonzero, std::size_t most);

enum class Combination { Union, Intersect, ExclusiveOr, Exclude };

/// Open outlines are closed first. Takes what it costs out of the budget, about 25 microseconds a unit; absent when
/// that is not enough.
std::optional<QPainterPath> combined(
    const QPainterPath& parent, const QPainterPath& child, Combination how, double& budget);

} // namespace Ostrel::ShapeOutlines
