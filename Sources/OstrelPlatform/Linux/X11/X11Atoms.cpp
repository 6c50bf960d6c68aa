#include "OstrelPlatform/Linux/X11/X11Atoms.h"

#include "OstrelPlatform/Linux/X11/X11Screen.h"

namespace Ostrel {

X11Atoms::X11Atoms(xcb_connection_t* connection, int screenNumber) {
    const QByteArray compositor = "_NET_WM_CM_S" + QByteArray::number(screenNumber);
    const std::array<QByteArray, NameCount> names{
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
    atoms_ = X11Screen::intern<NameCount>(connection, names);
}

} // namespace Ostrel
