#pragma once

#include <QImage>

#include <cstddef>

class QPainter;
class QRect;

namespace Ostrel {

/// The background and the lowest drawables as one picture, kept once they have stood still for a while: where something
/// moves above them, they then cost a copy instead of being painted anew.
class CanvasUnderlay {
public:
    /// Repaints that a drawable has to stand still for.
    static constexpr std::size_t SettlingRepaints = 32;

    /// How many of the drawables are in it.
    std::size_t count() const { return count_; }
    /// Whether it has so many drawables at that size and scale.
    bool holds(std::size_t count, const QSize& size, double scale) const;
    /// Makes an empty one, for the caller to paint so many drawables into.
    QImage& begin(std::size_t count, const QSize& size, double scale);
    void drop();
    /// Replaces these pixels of a picture of the same size; the painter's coordinates are those pixels.
    void copyTo(QPainter& painter, const QRect& pixels) const;

private:
    QImage picture_;
    std::size_t count_ = 0;
    double scale_ = 0;
};

} // namespace Ostrel
