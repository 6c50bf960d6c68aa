#pragma once

#include "OstrelEngine/Actions/MouseEvents.h"
#include "OstrelEngine/Measures/InputTextPresentation.h"
#include "OstrelEngine/Meters/MeterProtocol.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// Turns what the pointer and the input field do into a skin's actions: which meter is meant, which of its options
/// acts, what the mouse variables in it say. Knows no window and no toolkit. Main thread.
class CanvasInput {
public:
    /// The canvas's own drawables, which change with every publication, also in the middle of a call.
    explicit CanvasInput(const std::vector<Drawable>& drawables)
        : drawables_(drawables) { }

    /// The topmost drawable whose interaction rectangle holds the point; null when there is none.
    const Drawable* topmostDrawable(Point point) const;

    void mouseMoved(Point point);
    void mouseExited();

    enum class Press {
        /// Nothing here has an action for the left button, so that the press may move the widget.
        background,
        /// On a meter with actions of its own for the left button.
        meter,
        /// Inside the input field, which alone gets it, or outside and spent on closing it.
        field,
    };
    Press mouseDown(Point point);
    void mouseDragged(Point point);
    void mouseUp(Point point);
    /// False when nothing here had an action for it.
    bool scrollWheel(const ScrollEvent& event);

    /// Shows the field, in place of one that is open.
    void presentInput(const InputTextPresentation& presentation);
    /// Closes the field and tells nobody.
    void dismissInput();
    /// The open field, if any.
    const std::optional<InputTextPresentation>& activeInput() const { return activeInput_; }
    /// Return and Escape in the field.
    void submitActiveInput(const std::string& value);
    void dismissActiveInputByUser();

    /// Each may be empty.
    std::function<void(const std::string& action)> onAction;
    std::function<void(MouseEventKind, Point, const std::optional<std::string>& meterName)> onMouseEvent;
    std::function<void(const std::string& measureName, const std::string& value)> onInputSubmit;
    std::function<void(const std::string& measureName)> onInputDismiss;
    std::function<void(WidgetCommandScrollDirection)> onCommandScroll;
    /// The field that is to be seen from now on; absent for none.
    std::function<void(const std::optional<InputTextPresentation>&)> onFieldChange;
    /// Whether command-scrolling up means down. Never, when it is empty.
    std::function<bool()> isCommandScrollReversed;

private:
    const Drawable* drawable(const std::optional<std::string>& name) const;
    const Drawable* drawableOfExactName(std::string_view name) const;
    std::optional<std::string> topmostName(Point point) const;
    void runHoverAction(const Drawable* drawable, const CaseKey& key);
    /// True when the meter has the option.
    bool runMouseAction(const Drawable* drawable, const CaseKey& key, Point point);
    std::string resolveMouseVariables(std::string_view text, Point point, const MeterRenderer& meter) const;
    std::string resolveMeterCoordinateReferences(std::string_view text) const;
    void sendMouseEvent(MouseEventKind kind, Point point, const std::optional<std::string>& meterName) const;
    void commandScroll(const ScrollEvent& event);
    bool shouldTriggerCommandScroll(const ScrollEvent& event) const;
    void clearActiveInput();

    const std::vector<Drawable>& drawables_;
    /// The meter that the current left press began on.
    std::optional<std::string> activeDragMeterName_;
    std::optional<std::string> hoveredMeterName_;
    std::optional<InputTextPresentation> activeInput_;
    /// Closing a field can make a toolkit report its end once more.
    bool isCompletingInput_ = false;
    double lastCommandScrollTriggerTime_ = 0;
};

} // namespace Ostrel
