#pragma once

#include "OstrelGUI/DefaultPlacement.h"

#include <functional>
#include <optional>
#include <vector>

namespace Ostrel {

/// Where each widget opens that nobody has placed: widgets that are opened together as `DefaultPlacement` has it, one
/// that is opened alone at the first place of that order that no such widget still stands on.
class WidgetPlacement {
public:
    /// The primary screen's size, asked each time.
    explicit WidgetPlacement(std::function<Size()> screen)
        : screen_(std::move(screen)) { }

    void beginTogether(std::size_t count) { together_.emplace(screen_(), count); }
    void endTogether() { together_.reset(); }

    /// The origin of a widget of that size, given the origins of those that run.
    Point choose(Size widget, const std::vector<Point>& running);

private:
    Point firstFree(Size widget) const;

    std::function<Size()> screen_;
    std::optional<DefaultPlacement> together_;
    /// Frames that were chosen and whose widgets may still stand there.
    std::vector<Rect> chosen_;
};

} // namespace Ostrel
