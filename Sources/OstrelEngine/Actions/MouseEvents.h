#pragma once

#include "OstrelEngine/Geometry.h"

// What the pointer does over a widget, in widget coordinates.
namespace Ostrel {

enum class PointerButton { left, right, middle, x1, x2 };

struct PointerPress {
    PointerButton button = PointerButton::left;
    /// The second of two quick presses of a button.
    bool isDouble = false;
    /// The key is held that passes over what a widget does with a click.
    bool isBypassed = false;
};

enum class MouseEventKind { leftDown, leftDrag, leftUp, scrollUp, scrollDown };

/// Where a scroll event stands in a gesture on a touch surface; `none` for a notched wheel and for surfaces that do not
/// tell.
enum class ScrollPhase { none, mayBegin, began, changed, stationary, ended, cancelled };

struct ScrollEvent {
    Point point;
    /// Above 0 is up, or left.
    double delta = 0;
    /// From a touch surface rather than a notched wheel.
    bool isPrecise = false;
    ScrollPhase phase = ScrollPhase::none;
    /// Of the movement that goes on when the fingers have left the surface.
    ScrollPhase momentum = ScrollPhase::none;
    bool isCommandHeld = false;
    /// Whether up means down while the command key is held.
    bool isCommandReversed = false;
    /// When it happened.
    double uptimeSeconds = 0;
    /// Of a wheel that is tilted.
    bool isSideways = false;
};

enum class WidgetCommandScrollDirection { up, down };
enum class WidgetContextAction { toggleFreeze, unrender };

} // namespace Ostrel
