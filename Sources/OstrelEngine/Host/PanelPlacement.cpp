#include "OstrelEngine/Host/PanelPlacement.h"

#include <algorithm>
#include <cmath>

namespace Ostrel::PanelPlacement {

namespace {

constexpr double MostPixelsASide = 32767;
constexpr double MostPixels = 32.0 * 1024 * 1024;
// A panel of which less than this shows cannot be taken hold of.
constexpr int LeastVisible = 16;

bool isReachable(const QRect& frame, const QRect& screen) {
    const QRect visible = frame.intersected(screen);
    return visible.width() >= std::min(LeastVisible, frame.width())
        && visible.height() >= std::min(LeastVisible, frame.height());
}

int distance(const QRect& frame, const QRect& screen) {
    const QPoint between = frame.center() - screen.center();
    return between.manhattanLength();
}

/// The least move; what is larger than the screen keeps its bottom left corner on it.
QRect movedInto(QRect frame, const QRect& screen) {
    frame.moveRight(std::min(frame.right(), screen.right()));
    frame.moveLeft(std::max(frame.left(), screen.left()));
    frame.moveTop(std::max(frame.top(), screen.top()));
    frame.moveBottom(std::min(frame.bottom(), screen.bottom()));
    return frame;
}

} // namespace

QSize windowSize(Size widget, double scale) {
    const double most = std::floor(MostPixelsASide / scale);
    // Not clamp: a size that is no number becomes the least.
    const auto side = [](double length, double longest) { return std::min(std::max(1.0, std::ceil(length)), longest); };
    const double width = side(widget.width, most);
    const double height = side(widget.height, std::min(most, std::floor(MostPixels / (width * scale * scale))));
    return {static_cast<int>(width), static_cast<int>(height)};
}

bool shouldResizeWindow(Size current, Size proposed) {
    return std::abs(current.width - proposed.width) > 1 || std::abs(current.height - proposed.height) > 1;
}

QRect frame(Point origin, const QSize& size, const QRect& primaryScreen) {
    // Origins come from files and skins; beyond this they are out of every view anyway.
    const auto whole = [](double value) { return static_cast<int>(std::lround(std::clamp(value, -1e6, 1e6))); };
    const int bottom = primaryScreen.y() + primaryScreen.height() - whole(origin.y);
    return {QPoint(primaryScreen.x() + whole(origin.x), bottom - size.height()), size};
}

Point origin(const QRect& frame, const QRect& primaryScreen) {
    return {static_cast<double>(frame.x() - primaryScreen.x()),
        static_cast<double>(primaryScreen.y() + primaryScreen.height() - (frame.y() + frame.height()))};
}

QRect broughtIntoView(const QRect& frame, std::span<const QRect> screens) {
    const bool reachable
        = std::ranges::any_of(screens, [&](const QRect& screen) { return isReachable(frame, screen); });
    if (reachable || screens.empty())
        return frame;
    const auto nearest
        = std::ranges::min_element(screens, {}, [&](const QRect& screen) { return distance(frame, screen); });
    return movedInto(frame, *nearest);
}

} // namespace Ostrel::PanelPlacement
