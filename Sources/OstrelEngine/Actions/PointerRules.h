#pragma once

#include "OstrelEngine/Actions/MouseEvents.h"
#include "OstrelEngine/Geometry.h"

namespace Ostrel {

/// What a press did.
enum class Press {
    /// Nothing: the left button may move the widget, the right one opens the menu.
    background,
    /// A meter has actions of its own for the button.
    meter,
    /// The input field took it.
    field,
};

/// Which meter of a skin the pointer means, and what it then does. Each dialect has its own. Points are in widget
/// coordinates. Main thread.
class PointerRules {
public:
    virtual ~PointerRules() = default;

    virtual void mouseMoved(Point point) = 0;
    /// The pointer has left the widget.
    virtual void mouseExited() = 0;
    virtual Press mouseDown(Point point, const PointerPress& press) = 0;
    /// The pointer moves with the left button held.
    virtual void mouseDragged(Point point) = 0;
    /// The press has become a move of the window.
    virtual void windowWillMove() { }
    virtual void mouseUp(Point point, PointerButton button) = 0;
    /// False when nothing here had an action for it.
    virtual bool scrollWheel(const ScrollEvent& event) = 0;
};

} // namespace Ostrel
