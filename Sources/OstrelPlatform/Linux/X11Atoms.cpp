#include "OstrelPlatform/Linux/X11Atoms.h"

#include <QByteArray>

#include <xcb/xcb.h>

#include <cstdlib>

namespace Ostrel {

X11Atoms::X11Atoms(xcb_connection_t* connection, int screenNumber) {
    const QByteArray compositor = "_NET_WM_CM_S" + QByteArray::number(screenNumber);
    const std::array<QByteArrayView, NameCount> names{
        "_NET_WM_WINDOW_TYPE",
        "_NET_WM_WINDOW_TYPE_UTILITY",
        "_NET_WM_WINDOW_TYPE_NORMAL",
        "_NET_WM_STATE",
        "_NET_WM_STATE_BELOW",
        "_NET_WM_STATE_STICKY",
        "_NET_WM_STATE_SKIP_TASKBAR",
        "_NET_WM_STATE_SKIP_PAGER",
        "_KDE_NET_WM_STATE_SKIP_SWITCHER",
        "_NET_WM_DESKTOP",
        "WM_PROTOCOLS",
        "WM_DELETE_WINDOW",
        "_NET_WM_PING",
        compositor,
    };
    std::array<xcb_intern_atom_cookie_t, NameCount> cookies{};
    for (std::size_t i = 0; i < NameCount; ++i)
        cookies[i] = xcb_intern_atom(connection, false, static_cast<std::uint16_t>(names[i].size()), names[i].data());
    for (std::size_t i = 0; i < NameCount; ++i) {
        xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(connection, cookies[i], nullptr);
        atoms_[i] = reply ? reply->atom : 0;
        std::free(reply);
    }
}

} // namespace Ostrel
