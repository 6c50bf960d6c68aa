#include "OstrelGUI/WidgetPlacement.h"

#include <algorithm>

namespace Ostrel {

namespace {

/// Places that are tried before a widget may cover another.
constexpr int MostPlaces = 40;

bool overlap(const Rect& a, const Rect& b) {
    return a.x < b.maxX() && b.x < a.maxX() && a.y < b.maxY() && b.y < a.maxY();
}

} // namespace

Point WidgetPlacement::choose(Size widget, const std::vector<Point>& running) {
    std::erase_if(chosen_, [&](const Rect& frame) {
        return std::ranges::find(running, Point{frame.x, frame.y}) == running.end();
    });
    const Point origin = together_ ? together_->next(widget) : firstFree(widget);
    chosen_.push_back({origin.x, origin.y, widget.width, widget.height});
    return origin;
}

Point WidgetPlacement::firstFree(Size widget) const {
    DefaultPlacement places(screen_(), 1);
    std::optional<Point> first;
    for (int i = 0; i < MostPlaces; ++i) {
        const Point origin = places.next(widget);
        const Rect frame{origin.x, origin.y, widget.width, widget.height};
        if (std::ranges::none_of(chosen_, [&](const Rect& other) { return overlap(frame, other); }))
            return origin;
        const bool coversNoneWhole = std::ranges::none_of(chosen_, [&](const Rect& other) {
            return Point{other.x, other.y} == origin;
        });
        if (!first && coversNoneWhole)
            first = origin;
    }
    return first.value_or(places.next(widget));
}

} // namespace Ostrel
