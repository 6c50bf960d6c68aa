#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelEngine/Geometry.h"

#include <optional>
#include <string_view>
#include <vector>

namespace Ostrel {

enum class ShapeKind { rectangle, ellipse };

/// One shape, relative to its meter's origin. Without colors it leaves no mark.
struct ShapePrimitive {
    ShapeKind kind = ShapeKind::rectangle;
    /// The rectangle, or the box of the ellipse.
    Rect rect;
    double cornerRadius = 0;
    std::optional<Color> fillColor;
    std::optional<Color> strokeColor;
    double strokeWidth = 1;

    bool isStroked() const { return strokeColor && strokeWidth > 0; }
    friend bool operator==(const ShapePrimitive&, const ShapePrimitive&) = default;
};

namespace ShapeParser {

/// "Rectangle x,y,w,h[,radius]" or "Ellipse x,y,rx[,ry]", then modifiers after "|"; absent for anything else.
std::optional<ShapePrimitive> parseShape(std::string_view text);
/// The shapes of Shape and Shape2 to Shape20 that parse.
std::vector<ShapePrimitive> parseShapes(const Options& options);
/// The union of the shapes' boxes, strokes not counted; absent without shapes.
std::optional<Rect> bounds(const std::vector<ShapePrimitive>& shapes);

} // namespace ShapeParser

} // namespace Ostrel
