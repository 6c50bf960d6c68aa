#include "OstrelEngine/Full/MouseActions.h"

#include "OstrelCore/Text/Text.h"

namespace Ostrel {

namespace {

constexpr std::array<CaseKey, MouseActionCount> Keys{"LeftMouseDownAction"_key, "LeftMouseUpAction"_key,
    "LeftMouseDoubleClickAction"_key, "RightMouseDownAction"_key, "RightMouseUpAction"_key,
    "RightMouseDoubleClickAction"_key, "MiddleMouseDownAction"_key, "MiddleMouseUpAction"_key,
    "MiddleMouseDoubleClickAction"_key, "X1MouseDownAction"_key, "X1MouseUpAction"_key, "X1MouseDoubleClickAction"_key,
    "X2MouseDownAction"_key, "X2MouseUpAction"_key, "X2MouseDoubleClickAction"_key, "MouseOverAction"_key,
    "MouseLeaveAction"_key, "MouseScrollUpAction"_key, "MouseScrollDownAction"_key, "MouseScrollLeftAction"_key,
    "MouseScrollRightAction"_key};

} // namespace

MouseAction mouseAction(PointerButton button, ButtonEvent event) {
    constexpr std::size_t EventsOfButton = 3;
    return static_cast<MouseAction>(
        static_cast<std::size_t>(button) * EventsOfButton + static_cast<std::size_t>(event));
}

const CaseKey& mouseActionKey(MouseAction action) {
    return Keys[static_cast<std::size_t>(action)];
}

std::optional<MouseActions::Found> MouseActions::find(
    std::size_t owner, MouseAction action, const Options& options) const {
    const auto text = trimmed(option(options, mouseActionKey(action)).value_or(""));
    if (text.empty() || owner >= states_.size())
        return std::nullopt;
    const auto state = states_[owner][static_cast<std::size_t>(action)].state;
    if (state == State::Cleared)
        return std::nullopt;
    return Found{text, state == State::Disabled};
}

void MouseActions::change(Entry& entry, MouseActionChange change) {
    switch (change) {
    case MouseActionChange::Disable:
        entry.state = entry.lastOff = State::Disabled;
        break;
    case MouseActionChange::Clear:
        entry.state = entry.lastOff = State::Cleared;
        break;
    case MouseActionChange::Enable:
        entry.state = State::Enabled;
        break;
    case MouseActionChange::Toggle:
        entry.state = entry.state == State::Enabled ? entry.lastOff : State::Enabled;
        break;
    }
}

void MouseActions::change(std::size_t owner, std::string_view names, MouseActionChange change) {
    if (owner >= states_.size())
        return;
    for (const auto item : split(names, '|')) {
        const auto name = trimmed(item);
        for (std::size_t i = 0; i < MouseActionCount; ++i) {
            if (name == "*" || equalsIgnoringCase(name, Keys[i].text))
                MouseActions::change(states_[owner][i], change);
        }
    }
}

} // namespace Ostrel
