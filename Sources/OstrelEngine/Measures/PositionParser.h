#pragma once

#include <optional>
#include <string_view>

namespace Ostrel::PositionParser {

enum class RelativeReference {
    none,
    /// Trailing "r": from the origin of the previous meter.
    previousOrigin,
    /// Trailing "R": from the far edge of the previous meter.
    previousEdge,
};

struct PositionValue {
    double value = 0;
    RelativeReference reference = RelativeReference::none;

    bool isRelative() const { return reference != RelativeReference::none; }
    bool usesEdgeReference() const { return reference == RelativeReference::previousEdge; }
    friend bool operator==(const PositionValue&, const PositionValue&) = default;
};

/// A number or formula with an optional relative suffix; absent when it does not evaluate.
std::optional<PositionValue> parsePosition(std::optional<std::string_view> text);
/// A number or formula; 0 for every failure.
double parseDimension(std::optional<std::string_view> text);

} // namespace Ostrel::PositionParser
