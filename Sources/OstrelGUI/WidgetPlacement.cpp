#include "OstrelGUI/WidgetPlacement.h"

#include "OstrelEngine/Host/WidgetController.h"

#include <algorithm>

namespace Ostrel {

namespace {

/// Places that are tried before a widget may cover another.
constexpr int MostPlaces = 40;
constexpr double Gap = 20;

bool overlap(const Rect& a, const Rect& b) {
    return a.x < b.maxX() && b.x < a.maxX() && a.y < b.maxY() && b.y < a.maxY();
}

} // namespace

Point WidgetPlacement::choose(Size widget, const std::vector<Point>& running) {
    std::erase_if(chosen_, [&](const Rect& frame) {
        return std::ranges::find(running, Point{frame.x, frame.y}) == running.end();
    });
    const auto free = together_ && together_->isGrid() ? together_->next(widget) : freePlace(widget);
    const Point origin = free ? *free : firstThatCoversNoneWhole(widget);
    chosen_.push_back({origin.x, origin.y, widget.width, widget.height});
    return origin;
}

std::optional<Point> WidgetPlacement::freePlace(Size widget) const {
    const Point start = WidgetController::DefaultOrigin;
    const Size screen = screen_();
    std::vector<double> lefts{start.x};
    std::vector<double> bottoms{start.y};
    for (const auto& other : chosen_) {
        lefts.push_back(other.maxX() + Gap);
        bottoms.push_back(other.maxY() + Gap);
    }
    std::ranges::sort(lefts);
    std::ranges::sort(bottoms);
    for (const double y : bottoms)
        for (const double x : lefts) {
            const Rect frame{x, y, widget.width, widget.height};
            const bool isOnScreen = frame.maxX() <= screen.width && frame.maxY() <= screen.height;
            if (isOnScreen && std::ranges::none_of(chosen_, [&](const Rect& other) { return overlap(frame, other); }))
                return Point{x, y};
        }
    return std::nullopt;
}

Point WidgetPlacement::firstThatCoversNoneWhole(Size widget) const {
    DefaultPlacement places(screen_(), 1);
    for (int i = 0; i < MostPlaces; ++i) {
        const Point origin = places.next(widget);
        if (std::ranges::none_of(chosen_, [&](const Rect& other) { return Point{other.x, other.y} == origin; }))
            return origin;
    }
    return places.next(widget);
}

} // namespace Ostrel
