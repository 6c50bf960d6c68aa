#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"

#include <QBrush>
#include <QPainterPath>
#include <QRectF>

#include <optional>
#include <vector>

namespace Ostrel {

/// One shape, ready to be filled: coordinates count from the meter's content.
struct ShapeElement {
    /// Empty for an open shape.
    QPainterPath area;
    QBrush fill;
    QPainterPath stroke;
    QBrush strokeFill;
    /// Of area and stroke.
    QRectF bounds;
    /// The area when it is an upright rectangle, which is filled faster.
    std::optional<QRectF> rectangle;

    bool isFilled() const;
    bool isStroked() const;
    bool hasGradient() const;
    friend bool operator==(const ShapeElement&, const ShapeElement&) = default;
};

/// The shapes that a meter's options define, in drawing order. What cannot be read is left out, as are combinations
/// that name each other. All together they have at most 65536 path elements; shapes beyond are left out.
std::vector<ShapeElement> readShapeElements(const Options& options);

} // namespace Ostrel
