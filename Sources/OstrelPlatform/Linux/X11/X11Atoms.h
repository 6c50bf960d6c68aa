#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

struct xcb_connection_t;

namespace Ostrel {

/// The server's numbers for the names that panels use, asked for in one go.
class X11Atoms {
public:
    enum Name : std::size_t {
        WindowType,
        TypeUtility,
        TypeNormal,
        WindowState,
        StateBelow,
        StateSticky,
        StateSkipTaskbar,
        StateSkipPager,
        StateSkipSwitcher,
        Desktop,
        Protocols,
        DeleteWindow,
        Ping,
        /// The selection that a compositor of the screen owns.
        Compositor,
        NameCount,
    };

    X11Atoms(xcb_connection_t* connection, int screenNumber);

    std::uint32_t operator[](Name name) const { return atoms_[name]; }

private:
    std::array<std::uint32_t, NameCount> atoms_{};
};

} // namespace Ostrel
