#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelEngine/Actions/MouseEvents.h"
#include "OstrelEngine/Full/ActionHost.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// What a section can have an action for.
enum class MouseAction : std::uint8_t {
    // For each button in the order of PointerButton: press, release, second press.
    LeftDown,
    LeftUp,
    LeftDouble,
    FirstOfOtherButtons,
    Over = 15,
    Leave,
    ScrollUp,
    ScrollDown,
    ScrollLeft,
    ScrollRight,
};
inline constexpr std::size_t MouseActionCount = 21;

enum class ButtonEvent : std::uint8_t { Down, Up, Double };
MouseAction mouseAction(PointerButton button, ButtonEvent event);
/// The option that holds the action.
const CaseKey& mouseActionKey(MouseAction action);

/// Which mouse actions bangs have switched off, for each meter of a skin and the skin itself.
class MouseActions {
public:
    struct Found {
        std::string_view text;
        /// It takes the event and does nothing.
        bool isDisabled = false;
    };

    /// `owner` counts the meters; the one behind the last is the skin.
    void setOwnerCount(std::size_t count) { states_.resize(count); }
    /// The action as it stands; absent when it is not written, empty or cleared.
    std::optional<Found> find(std::size_t owner, MouseAction action, const Options& options) const;
    /// Names that are none are left out.
    void change(std::size_t owner, std::string_view names, MouseActionChange change);

private:
    enum class State : std::uint8_t { Enabled, Disabled, Cleared };
    struct Entry {
        State state = State::Enabled;
        State lastOff = State::Disabled;
    };
    static void change(Entry& entry, MouseActionChange change);

    std::vector<std::array<Entry, MouseActionCount>> states_;
};

} // namespace Ostrel
