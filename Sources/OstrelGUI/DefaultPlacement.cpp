#include "OstrelGUI/DefaultPlacement.h"

#include "OstrelEngine/Host/WidgetController.h"

#include <algorithm>

namespace Ostrel {

namespace {

constexpr std::size_t MostBesideEachOther = 24;
constexpr double Gap = 20;

constexpr int GridColumns = 10;
constexpr Point GridStart{20, 20};
constexpr Size GridStep{180, 130};

} // namespace

DefaultPlacement::DefaultPlacement(Size screen, std::size_t count)
    : screen_(screen)
    , isGrid_(count > MostBesideEachOther)
    , cursor_(WidgetController::DefaultOrigin) { }

Point DefaultPlacement::next(Size widget) {
    const Point origin = isGrid_ ? nextInGrid(widget) : nextBeside(widget);
    ++placed_;
    return origin;
}

Point DefaultPlacement::nextInGrid(Size widget) {
    const double fromTop = GridStart.y + placed_ / GridColumns * GridStep.height;
    return {GridStart.x + placed_ % GridColumns * GridStep.width, screen_.height - fromTop - widget.height};
}

Point DefaultPlacement::nextBeside(Size widget) {
    const Point start = WidgetController::DefaultOrigin;
    if (cursor_.x + widget.width > screen_.width && cursor_.x > start.x) {
        cursor_ = {start.x, cursor_.y + rowHeight_ + Gap};
        rowHeight_ = 0;
    }
    // The screen is full: over again, a little aside so that none is covered whole.
    if (cursor_.y + widget.height > screen_.height && placed_ > 0)
        cursor_ = {start.x + placed_ * Gap, start.y + placed_ * Gap};
    const Point origin = cursor_;
    cursor_.x += widget.width + Gap;
    rowHeight_ = std::max(rowHeight_, widget.height);
    return origin;
}

} // namespace Ostrel
