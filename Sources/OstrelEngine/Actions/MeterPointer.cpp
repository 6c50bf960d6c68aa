#include "OstrelEngine/Actions/MeterPointer.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Actions/MouseVariables.h"
#include "OstrelEngine/Runtime/BracketReferences.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <ranges>
#include <utility>

namespace Ostrel {

namespace {

constexpr double SmallestScroll = 0.0001;
/// Of a surface that tells no phases: what comes later than this is a gesture of its own.
constexpr double CommandScrollPauseSeconds = 0.25;

std::string nameOf(const Drawable& drawable) {
    return drawable.meter->name();
}

bool hasLeftMouseAction(const Drawable& drawable) {
    static constexpr std::array Keys{"LeftMouseDownAction"_key, "LeftMouseDragAction"_key, "LeftMouseUpAction"_key};
    return std::ranges::any_of(Keys,
        [&](const CaseKey& key) { return !trimmed(option(drawable.meter->options(), key).value_or("")).empty(); });
}

} // namespace

MeterPointer::MeterPointer(const std::vector<Drawable>& shown, std::weak_ptr<PointerClient> client)
    : drawables_(shown)
    , client_(std::move(client)) { }

const Drawable* MeterPointer::topmostDrawable(Point point) const {
    for (const auto& drawable : drawables_ | std::views::reverse) {
        const Rect rect = drawable.meter->interactionRect(drawable.values);
        if (!rect.isEmpty() && rect.contains(point))
            return &drawable;
    }
    return nullptr;
}

std::optional<std::string> MeterPointer::topmostName(Point point) const {
    const auto* hit = topmostDrawable(point);
    return hit ? std::optional(nameOf(*hit)) : std::nullopt;
}

const Drawable* MeterPointer::drawable(const std::optional<std::string>& name) const {
    if (!name)
        return nullptr;
    const auto found = std::ranges::find_if(
        drawables_, [&](const Drawable& candidate) { return equalsIgnoringCase(candidate.meter->name(), *name); });
    return found == drawables_.end() ? nullptr : &*found;
}

const Drawable* MeterPointer::drawableOfExactName(std::string_view name) const {
    const auto found
        = std::ranges::find_if(drawables_, [&](const Drawable& candidate) { return candidate.meter->name() == name; });
    return found == drawables_.end() ? nullptr : &*found;
}

void MeterPointer::mouseMoved(Point point) {
    auto name = topmostName(point);
    if (name == hoveredMeterName_)
        return;
    if (hoveredMeterName_)
        runHoverAction(drawableOfExactName(*hoveredMeterName_), "MouseLeaveAction"_key);
    hoveredMeterName_ = std::move(name);
    const auto* entered = hoveredMeterName_ ? drawableOfExactName(*hoveredMeterName_) : nullptr;
    if (!entered || !entered->meter->options().find("MouseOverAction"_key))
        return;
    runHoverAction(entered, "MouseOverAction"_key);
    // The action may have shown or hidden meters: what lies here now is not entered at the next move.
    if (auto now = topmostName(point))
        hoveredMeterName_ = std::move(now);
}

void MeterPointer::mouseExited() {
    const auto left = std::exchange(hoveredMeterName_, std::nullopt);
    if (left)
        runHoverAction(drawableOfExactName(*left), "MouseLeaveAction"_key);
}

/// As it stands: hover actions have no mouse variables.
void MeterPointer::runHoverAction(const Drawable* drawable, const CaseKey& key) {
    const auto* text = drawable ? drawable->meter->options().find(key) : nullptr;
    // A copy, since the action may change the option.
    if (text)
        runAction(std::string(*text));
}

Press MeterPointer::mouseDown(Point point, const PointerPress& pressed) {
    if (pressed.button != PointerButton::left)
        return Press::background;
    const auto* hit = topmostDrawable(point);
    const auto press = hit && hasLeftMouseAction(*hit) ? Press::meter : Press::background;
    const auto name = hit ? std::optional(nameOf(*hit)) : std::nullopt;
    activeDragMeterName_ = name;
    runMouseAction(hit, "LeftMouseDownAction"_key, point);
    tell(MouseEventKind::leftDown, point, name);
    return press;
}

void MeterPointer::mouseDragged(Point point) {
    const auto name = activeDragMeterName_ ? activeDragMeterName_ : topmostName(point);
    runMouseAction(drawable(name), "LeftMouseDragAction"_key, point);
    tell(MouseEventKind::leftDrag, point, name);
}

void MeterPointer::mouseUp(Point point, PointerButton button) {
    if (button != PointerButton::left)
        return;
    const auto name = activeDragMeterName_ ? activeDragMeterName_ : topmostName(point);
    // Before the meter's action, unlike a press and a drag.
    tell(MouseEventKind::leftUp, point, name);
    if (!runMouseAction(drawable(name), "LeftMouseUpAction"_key, point))
        runMouseAction(topmostDrawable(point), "LeftMouseUpAction"_key, point);
    activeDragMeterName_.reset();
}

bool MeterPointer::runMouseAction(const Drawable* drawable, const CaseKey& key, Point point) {
    const auto* text = drawable ? drawable->meter->options().find(key) : nullptr;
    if (!text)
        return false;
    runAction(resolveMouseVariables(*text, point, *drawable->meter));
    return true;
}

void MeterPointer::runAction(const std::string& action) const {
    if (const auto client = client_.lock())
        client->runPointerAction(action);
}

void MeterPointer::tell(MouseEventKind kind, Point point, const std::optional<std::string>& meterName) const {
    if (const auto client = client_.lock())
        client->pointerDidAct(kind, point, meterName);
}

std::string MeterPointer::resolveMouseVariables(std::string_view text, Point point, const MeterRenderer& meter) const {
    // Counted in the frame, which for a text that is aligned to the right begins at its anchor.
    return resolveMeterCoordinateReferences(
        MouseVariables::substitute(text, point, meter.frame().rect(), MouseVariables::Decimals::none));
}

std::string MeterPointer::resolveMeterCoordinateReferences(std::string_view text) const {
    return BracketReferences::substituteCoordinates(text, [this](std::string_view name, char property) -> std::string {
        const auto* found = drawable(std::string(name));
        if (!found)
            return "0";
        const auto& frame = found->meter->frame();
        const auto index = std::string_view("XYWH").find(property);
        const std::array values{frame.x, frame.y, frame.w, frame.h};
        return formatFixed(index < values.size() ? values[index] : 0, 4);
    });
}

bool MeterPointer::scrollWheel(const ScrollEvent& event) {
    if (event.isSideways)
        return false;
    if (event.isCommandHeld) {
        commandScroll(event);
        return true;
    }
    if (!(std::abs(event.delta) > SmallestScroll))
        return false;
    const bool isUp = event.delta > 0;
    const auto* hit = topmostDrawable(event.point);
    const auto name = hit ? std::optional(nameOf(*hit)) : std::nullopt;
    const bool acted = runMouseAction(hit, isUp ? "MouseScrollUpAction"_key : "MouseScrollDownAction"_key, event.point);
    tell(isUp ? MouseEventKind::scrollUp : MouseEventKind::scrollDown, event.point, name);
    return acted;
}

void MeterPointer::commandScroll(const ScrollEvent& event) {
    if (!shouldTriggerCommandScroll(event) || !(std::abs(event.delta) > SmallestScroll))
        return;
    lastCommandScrollTriggerTime_ = event.uptimeSeconds;
    if (const auto client = client_.lock())
        client->commandScroll((event.delta > 0) != event.isCommandReversed ? WidgetCommandScrollDirection::up
                                                                           : WidgetCommandScrollDirection::down);
}

/// One gesture on a touch surface is one step; a wheel steps at every notch.
bool MeterPointer::shouldTriggerCommandScroll(const ScrollEvent& event) const {
    if (!event.isPrecise)
        return true;
    if (event.momentum != ScrollPhase::none)
        return false;
    if (event.phase == ScrollPhase::none)
        return event.uptimeSeconds - lastCommandScrollTriggerTime_ >= CommandScrollPauseSeconds;
    return event.phase == ScrollPhase::began || event.phase == ScrollPhase::mayBegin;
}

} // namespace Ostrel
