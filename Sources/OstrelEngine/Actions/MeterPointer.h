#pragma once

#include "OstrelEngine/Actions/PointerRules.h"
#include "OstrelEngine/Meters/MeterProtocol.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// What the pointer makes a skin do.
class PointerClient {
public:
    virtual ~PointerClient() = default;
    virtual void runPointerAction(const std::string& action) = 0;
    /// For measures that follow the mouse. The source is the meter that the pointer belongs to, if any.
    virtual void pointerDidAct(MouseEventKind kind, Point point, const std::optional<std::string>& sourceMeterName) = 0;
    virtual void commandScroll(WidgetCommandScrollDirection direction) = 0;
};

/// The pointer rules of the base dialect: the topmost meter under the pointer acts, and a press keeps its meter until
/// the button is released.
class MeterPointer final : public PointerRules {
public:
    /// The list that is shown, which changes with every publication, also in the middle of a call.
    MeterPointer(const std::vector<Drawable>& shown, std::weak_ptr<PointerClient> client);

    /// The topmost drawable whose interaction rectangle holds the point; null when there is none.
    const Drawable* topmostDrawable(Point point) const;

    void mouseMoved(Point point) override;
    void mouseExited() override;
    /// Only the left button acts.
    Press mouseDown(Point point, const PointerPress& press) override;
    void mouseDragged(Point point) override;
    void mouseUp(Point point, PointerButton button) override;
    bool scrollWheel(const ScrollEvent& event) override;

private:
    const Drawable* drawable(const std::optional<std::string>& name) const;
    const Drawable* drawableOfExactName(std::string_view name) const;
    std::optional<std::string> topmostName(Point point) const;
    void runHoverAction(const Drawable* drawable, const CaseKey& key);
    /// True when the meter has the option.
    bool runMouseAction(const Drawable* drawable, const CaseKey& key, Point point);
    std::string resolveMouseVariables(std::string_view text, Point point, const MeterRenderer& meter) const;
    std::string resolveMeterCoordinateReferences(std::string_view text) const;
    void runAction(const std::string& action) const;
    void tell(MouseEventKind kind, Point point, const std::optional<std::string>& meterName) const;
    void commandScroll(const ScrollEvent& event);
    bool shouldTriggerCommandScroll(const ScrollEvent& event) const;

    const std::vector<Drawable>& drawables_;
    std::weak_ptr<PointerClient> client_;
    /// The meter that the current left press began on.
    std::optional<std::string> activeDragMeterName_;
    std::optional<std::string> hoveredMeterName_;
    double lastCommandScrollTriggerTime_ = 0;
};

} // namespace Ostrel
