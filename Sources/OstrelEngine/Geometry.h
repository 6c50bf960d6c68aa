#pragma once

#include <algorithm>

// Widget coordinates: points, origin at the widget's top left corner, y downward.
namespace Ostrel {

struct Point {
    double x = 0;
    double y = 0;

    friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
    double width = 0;
    double height = 0;

    /// Whether both sides are above 0.
    bool isComplete() const { return width > 0 && height > 0; }
    /// Each side that is not above 0 comes from `other`.
    Size filledFrom(Size other) const { return {width > 0 ? width : other.width, height > 0 ? height : other.height}; }

    friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    double minX() const { return std::min(x, x + width); }
    double minY() const { return std::min(y, y + height); }
    double maxX() const { return std::max(x, x + width); }
    double maxY() const { return std::max(y, y + height); }
    bool isEmpty() const { return !(width > 0 && height > 0); }
    /// A rectangle holds its left and top edge and not its right and bottom one.
    bool contains(Point p) const { return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY(); }
    Rect translated(double dx, double dy) const { return {x + dx, y + dy, width, height}; }
    Rect expanded(double by) const { return {x - by, y - by, width + 2 * by, height + 2 * by}; }
    /// The smallest rectangle that holds both, whether empty or not.
    Rect united(const Rect& other) const {
        const double left = std::min(minX(), other.minX());
        const double top = std::min(minY(), other.minY());
        return {left, top, std::max(maxX(), other.maxX()) - left, std::max(maxY(), other.maxY()) - top};
    }

    friend bool operator==(const Rect&, const Rect&) = default;
};

/// Red, green, blue and opacity, each 0 to 1, not premultiplied.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    friend bool operator==(const Color&, const Color&) = default;
};

} // namespace Ostrel
