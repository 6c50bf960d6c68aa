#pragma once

#include "OstrelGUI/DefaultPlacement.h"

#include <functional>
#include <optional>
#include <vector>

namespace Ostrel {

/// Where each widget opens that nobody has placed: many that are opened together in the grid of `DefaultPlacement`, all
/// others where no widget stands, from the default origin to the right and then upward. When the screen has
/// no such place left, they cover others a little aside.
class WidgetPlacement {
public:
    /// The primary screen's size, asked each time.
    explicit WidgetPlacement(std::function<Size()> screen)
        : screen_(std::move(screen)) { }

    void beginTogether(std::size_t count) { together_.emplace(screen_(), count); }
    void endTogether() { together_.reset(); }

    /// The origin of a widget of that size, in whole points, given the frames of those that run. They come from the
    /// window system, which has rounded them.
    Point choose(Size widget, const std::vector<Rect>& running);

private:
    std::optional<Point> freePlace(Size widget, const std::vector<Rect>& running) const;
    Point firstThatCoversNoneWhole(Size widget, const std::vector<Rect>& running) const;

    std::function<Size()> screen_;
    std::optional<DefaultPlacement> together_;
};

} // namespace Ostrel
