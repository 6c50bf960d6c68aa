#include "OstrelEngine/Full/FullPointer.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelDialect/PackFolders.h"
#include "OstrelEngine/Full/FullSkin.h"
#include "OstrelEngine/Full/PointerCursors.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace Ostrel {

namespace {

/// `$MouseX$` and its like, counted from the corner of what has the action.
class PointerValues final : public EventValues {
public:
    PointerValues(Point point, const Rect& area)
        : point_(point)
        , area_(area) { }

    std::optional<std::string> value(std::string_view name) const override {
        const auto colon = name.find(':');
        const auto side = name.substr(0, colon);
        const bool isX = equalsIgnoringCase(side, "MouseX");
        if (!isX && !equalsIgnoringCase(side, "MouseY"))
            return std::nullopt;
        const double way = std::floor(isX ? point_.x - area_.x : point_.y - area_.y);
        if (colon == std::string_view::npos || name.substr(colon) == ":")
            return OptionValues::numberText(way, 0);
        if (name.substr(colon) != ":%")
            return std::nullopt;
        const double length = isX ? area_.width : area_.height;
        return OptionValues::numberText(length > 0 ? std::clamp(std::floor(way / length * 100), 0.0, 100.0) : 0, 0);
    }

private:
    Point point_;
    Rect area_;
};

const Options& optionsOf(const FullSkin& skin, std::size_t owner) {
    const auto& meters = skin.meterTable();
    return owner < meters.count() ? meters.at(owner).options() : skin.skinOptions();
}

Rect areaOf(const FullSkin& skin, std::size_t owner) {
    const auto& meters = skin.meterTable();
    const Size size = skin.widgetSize();
    return owner < meters.count() ? meters.at(owner).frame().rect() : Rect{0, 0, size.width, size.height};
}

std::string sectionOf(const FullSkin& skin, std::size_t owner) {
    const auto& meters = skin.meterTable();
    return owner < meters.count() ? meters.at(owner).name() : std::string("Rainmeter");
}

/// In the border in which the left button does not take hold of the window.
bool isInDragMargin(const FullSkin& skin, Point point) {
    const auto margins = OptionValues::numbers(skin.skinOption("DragMargins"_key).value_or(""), ',');
    const Size size = skin.widgetSize();
    const auto margin = [&](std::size_t side) { return side < margins.size() ? margins[side].value_or(0) : 0; };
    const auto isBefore
        = [](double value, double way, double length) { return way != 0 && value < (way < 0 ? length + way : way); };
    return isBefore(point.x, margin(0), size.width) || isBefore(point.y, margin(1), size.height)
        || isBefore(size.width - point.x, margin(2), size.width)
        || isBefore(size.height - point.y, margin(3), size.height);
}

} // namespace

std::optional<FullPointer::Target> FullPointer::target(
    const FullSkin& skin, const PointerHits& hits, MouseAction action) {
    for (const auto meter : hits.meters) {
        if (const auto found = skin.mouseActions().find(meter, action, optionsOf(skin, meter)))
            return Target{meter, *found};
    }
    const auto own = skin.meterTable().count();
    const auto found = hits.isSolid ? skin.mouseActions().find(own, action, skin.skinOptions()) : std::nullopt;
    return found ? std::optional(Target{own, *found}) : std::nullopt;
}

bool FullPointer::run(FullSkin& skin, const PointerHits& hits, MouseAction action, Point point) {
    const auto found = target(skin, hits, action);
    if (!found)
        return false;
    if (!found->action.isDisabled) {
        // A copy, since the action may change the option.
        const std::string text(found->action.text);
        skin.runEventAction(text,
            {sectionOf(skin, found->owner), std::make_shared<const PointerValues>(point, areaOf(skin, found->owner))});
    }
    return true;
}

void FullPointer::runOwn(FullSkin& skin, std::size_t owner, MouseAction action) {
    const auto found = skin.mouseActions().find(owner, action, optionsOf(skin, owner));
    if (found && !found->isDisabled)
        skin.runEventAction(std::string(found->text), {sectionOf(skin, owner)});
}

void FullPointer::enterAndLeave(FullSkin& skin, const PointerHits& hits) {
    const auto own = skin.meterTable().count();
    isInside_.resize(own + 1);
    std::vector<std::size_t> left;
    std::vector<std::size_t> entered;
    for (std::size_t i = own; i-- > 0;) {
        const bool isInside = hits.contains(i);
        if (isInside != isInside_[i])
            (isInside ? entered : left).push_back(i);
        isInside_[i] = isInside;
    }
    if (hits.isSolid != isInside_[own])
        (hits.isSolid ? entered : left).push_back(own);
    isInside_[own] = hits.isSolid;
    for (const auto owner : left)
        runOwn(skin, owner, MouseAction::Leave);
    for (const auto owner : entered)
        runOwn(skin, owner, MouseAction::Over);
}

std::optional<std::size_t> FullPointer::commandButton(const FullSkin& skin, Point point) const {
    const auto& meters = skin.meterTable();
    for (std::size_t i = meters.count(); i-- > 0;) {
        const auto command = option(meters.at(i).options(), "ButtonCommand"_key);
        if (command && !trimmed(*command).empty() && isOwnPictureAt(skin, i, point))
            return i;
    }
    return std::nullopt;
}

void FullPointer::updateButtons(FullSkin& skin, std::optional<Point> point) {
    using State = FullMeter::PointerState;
    const auto& meters = skin.meterTable();
    bool hasChanged = false;
    for (std::size_t i = 0; i < meters.count(); ++i) {
        const bool isOver = point && meters.at(i).frame().rect().contains(*point) && isOwnPictureAt(skin, i, *point);
        const auto state = !isOver ? State::Outside : pressedButton_ == i ? State::Pressed : State::Over;
        hasChanged = meters.at(i).setPointerState(state) || hasChanged;
        // Held and left: what is released there later is no click.
        if (pressedButton_ == i && !isOver)
            pressedButton_.reset();
    }
    if (hasChanged)
        skin.redraw();
}

void FullPointer::mouseMoved(Point point) {
    const auto skin = skin_.lock();
    if (!skin)
        return;
    const auto hits = pointerHits(*skin, point);
    updateButtons(*skin, point);
    enterAndLeave(*skin, hits);
    tellHost(*skin, hits, point);
}

void FullPointer::mouseExited() {
    const auto skin = skin_.lock();
    if (!skin)
        return;
    updateButtons(*skin, std::nullopt);
    enterAndLeave(*skin, {});
    if (!std::exchange(toldTip_, ToolTip()).isEmpty())
        skin->host().setToolTip({}, {});
}

Press FullPointer::mouseDown(Point point, const PointerPress& press) {
    const auto skin = skin_.lock();
    isBypassed_[static_cast<std::size_t>(press.button)] = press.isBypassed;
    isWindowMoving_ = false;
    if (!skin || press.isBypassed)
        return Press::background;
    const auto hits = pointerHits(*skin, point);
    const auto action = [&](ButtonEvent event) { return mouseAction(press.button, event); };
    const auto has = [&](ButtonEvent event) { return target(*skin, hits, action(event)).has_value(); };
    const bool isLeft = press.button == PointerButton::left;
    // Before they run: an action may take itself away.
    const bool isTaken = isLeft ? has(ButtonEvent::Down) || isInDragMargin(*skin, point)
                                : has(ButtonEvent::Down) || has(ButtonEvent::Up) || has(ButtonEvent::Double);
    if (isLeft) {
        pressedButton_ = commandButton(*skin, point);
        updateButtons(*skin, point);
    }
    const bool isButton = pressedButton_.has_value();
    if (!press.isDouble || !run(*skin, hits, action(ButtonEvent::Double), point))
        run(*skin, hits, action(ButtonEvent::Down), point);
    return isTaken || (isLeft && isButton) ? Press::meter : Press::background;
}

void FullPointer::mouseUp(Point point, PointerButton button) {
    const auto skin = skin_.lock();
    const bool isMoving = button == PointerButton::left && std::exchange(isWindowMoving_, false);
    const auto pressed = button == PointerButton::left ? std::exchange(pressedButton_, std::nullopt) : std::nullopt;
    if (!skin || isMoving || std::exchange(isBypassed_[static_cast<std::size_t>(button)], false))
        return;
    run(*skin, pointerHits(*skin, point), mouseAction(button, ButtonEvent::Up), point);
    if (pressed && *pressed < skin->meterTable().count() && isOwnPictureAt(*skin, *pressed, point)) {
        const auto& meter = skin->meterTable().at(*pressed);
        const std::string command(option(meter.options(), "ButtonCommand"_key).value_or(""));
        skin->runEventAction(
            command, {meter.name(), std::make_shared<const PointerValues>(point, meter.frame().rect())});
    }
    if (button == PointerButton::left)
        updateButtons(*skin, point);
}

bool FullPointer::scrollWheel(const ScrollEvent& event) {
    const auto skin = skin_.lock();
    if (!skin || event.delta == 0)
        return false;
    const bool isForward = event.delta > 0;
    const auto action = event.isSideways ? (isForward ? MouseAction::ScrollLeft : MouseAction::ScrollRight)
                                         : (isForward ? MouseAction::ScrollUp : MouseAction::ScrollDown);
    return run(*skin, pointerHits(*skin, event.point), action, event.point);
}

PointerCursor FullPointer::cursor(const FullSkin& skin, const PointerHits& hits, Point point) const {
    const auto isOn = [](const Options& options, bool otherwise) {
        return OptionValues::isOn(option(options, "MouseActionCursor"_key).value_or("")).value_or(otherwise);
    };
    const bool isOnInSkin = isOn(skin.skinOptions(), true);
    const auto hasClick = [&](std::size_t owner) {
        for (std::size_t action = 0; action < static_cast<std::size_t>(MouseAction::Over); ++action) {
            const auto found
                = skin.mouseActions().find(owner, static_cast<MouseAction>(action), optionsOf(skin, owner));
            if (found && !found->isDisabled)
                return true;
        }
        return false;
    };
    const auto button = commandButton(skin, point);
    for (const auto meter : hits.meters) {
        const auto& options = optionsOf(skin, meter);
        const bool hasOption = option(options, "MouseActionCursor"_key).has_value();
        // A meter in front hides the hand of those behind only by its own word.
        if (!isOn(options, isOnInSkin)) {
            if (hasOption)
                return {};
            continue;
        }
        if (hasClick(meter) || button == meter)
            return namedCursor(skin, options);
    }
    const bool isOverSkin = hits.isSolid && isOnInSkin && hasClick(skin.meterTable().count());
    return isOverSkin ? namedCursor(skin, skin.skinOptions()) : PointerCursor();
}

void FullPointer::tellHost(FullSkin& skin, const PointerHits& hits, Point point) {
    auto shape = cursor(skin, hits, point);
    if (shape != toldCursor_) {
        toldCursor_ = shape;
        skin.host().setCursor(shape);
    }
    const bool areHidden
        = OptionValues::isOn(option(skin.skinOptions(), "ToolTipHidden"_key).value_or("")).value_or(false);
    const auto found = areHidden ? hits.meters.end() : std::ranges::find_if(hits.meters, [&](std::size_t meter) {
        return !skin.meterTable().at(meter).toolTip().isEmpty();
    });
    const bool hasTip = found != hits.meters.end();
    auto tip = hasTip ? skin.meterTable().at(*found).toolTip() : ToolTip();
    if (tip != toldTip_) {
        skin.host().setToolTip(tip, hasTip ? skin.meterTable().at(*found).frame().rect() : Rect());
        toldTip_ = std::move(tip);
    }
}

} // namespace Ostrel
