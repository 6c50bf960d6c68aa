#pragma once

#include "OstrelEngine/Geometry.h"

namespace Ostrel {

/// Where widgets open that nobody has placed yet. The first opens at its controller's default origin; further ones
/// stand beside and above it. More than a few would not all find room: they open in a grid from the screen's top left
/// corner, 180 points a column and 130 a row, in which each shows at least its upper left part.
class DefaultPlacement {
public:
    /// The primary screen's size, and how many widgets will ask.
    DefaultPlacement(Size screen, std::size_t count);

    /// Whether they are too many to stand beside each other.
    bool isGrid() const { return isGrid_; }
    /// The origin of the next widget: its bottom left corner, y upward.
    Point next(Size widget);

private:
    Point nextInGrid(Size widget);
    Point nextBeside(Size widget);

    Size screen_;
    bool isGrid_;
    int placed_ = 0;
    /// Of the row that is being filled.
    Point cursor_;
    double rowHeight_ = 0;
};

} // namespace Ostrel
