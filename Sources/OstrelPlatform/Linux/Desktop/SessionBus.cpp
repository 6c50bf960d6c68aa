#include "OstrelPlatform/Linux/Desktop/SessionBus.h"

#include <QFileInfo>

namespace Ostrel {

std::optional<std::string> sessionBusAddress() {
    const auto address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    if (!address.isEmpty())
        return address.startsWith("autolaunch:") ? std::nullopt : std::optional(address.toStdString());
    const auto folder = qgetenv("XDG_RUNTIME_DIR");
    const auto socket = folder + "/bus";
    if (folder.isEmpty() || !QFileInfo::exists(QString::fromLocal8Bit(socket)))
        return std::nullopt;
    return "unix:path=" + socket.toStdString();
}

} // namespace Ostrel
