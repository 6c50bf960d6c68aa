#include "OstrelGUI/WidgetPlacement.h"

#include "OstrelEngine/Host/WidgetController.h"

#include <algorithm>
#include <cmath>

namespace Ostrel {

namespace {

/// Places that are tried before a widget may cover another.
constexpr int MostPlaces = 40;
constexpr double Gap = 20;
/// Of the search that looks everywhere.
constexpr double Margin = 10;
constexpr double Step = 10;

bool overlap(const Rect& a, const Rect& b) {
    return a.x < b.maxX() && b.x < a.maxX() && a.y < b.maxY() && b.y < a.maxY();
}

} // namespace

Point WidgetPlacement::choose(Size widget, const std::vector<Rect>& running) {
    if (together_ && together_->isGrid())
        return together_->next(widget);
    const auto free = freePlace(widget, running);
    return free ? *free : firstThatCoversNoneWhole(widget, running);
}

std::optional<Point> WidgetPlacement::freePlace(Size widget, const std::vector<Rect>& running) const {
    const Point start = WidgetController::DefaultOrigin;
    const Size screen = screen_();
    std::vector<double> lefts{start.x};
    std::vector<double> bottoms{start.y};
    for (const auto& other : running) {
        lefts.push_back(std::max(std::ceil(other.maxX() + Gap), start.x));
        bottoms.push_back(std::max(std::ceil(other.maxY() + Gap), start.y));
    }
    const auto isFree = [&](const Rect& frame) {
        return frame.maxX() <= screen.width && frame.maxY() <= screen.height
            && std::ranges::none_of(running, [&](const Rect& other) { return overlap(frame, other); });
    };
    std::ranges::sort(lefts);
    std::ranges::sort(bottoms);
    for (const double y : bottoms)
        for (const double x : lefts) {
            if (isFree({x, y, widget.width, widget.height}))
                return Point{x, y};
        }
    // Nothing lies in line with the others: wherever there is room.
    for (double y = Margin; y + widget.height <= screen.height; y += Step)
        for (double x = Margin; x + widget.width <= screen.width; x += Step) {
            if (isFree({x, y, widget.width, widget.height}))
                return Point{x, y};
        }
    return std::nullopt;
}

Point WidgetPlacement::firstThatCoversNoneWhole(Size widget, const std::vector<Rect>& running) const {
    const auto isAt = [](const Rect& frame, Point origin) {
        return std::abs(frame.x - origin.x) < Gap / 2 && std::abs(frame.y - origin.y) < Gap / 2;
    };
    DefaultPlacement places(screen_(), 1);
    for (int i = 0; i < MostPlaces; ++i) {
        const Point origin = places.next(widget);
        if (std::ranges::none_of(running, [&](const Rect& frame) { return isAt(frame, origin); }))
            return origin;
    }
    return places.next(widget);
}

} // namespace Ostrel
