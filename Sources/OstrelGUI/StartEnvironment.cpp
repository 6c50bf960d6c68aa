#include "OstrelGUI/StartEnvironment.h"

#include <QCoreApplication>

#include <cstddef>
#include <iterator>

namespace Ostrel {

namespace {

struct Setting {
    const char* name;
    const char* value;
};

constexpr Setting Settings[] = {
    // Panels need hints that only X11 has; Wayland desktops run them too.
    {"QT_QPA_PLATFORM", "xcb"},
    // The plain event loop: the other polls more for each wake, and loads a library.
    {"QT_NO_GLIB", "1"},
    // A desktop's theme is a toolkit and a bus connection; panels have no controls.
    {"QT_QPA_PLATFORMTHEME", "generic"},
    // Panels are drawn by the processor.
    {"QT_XCB_GL_INTEGRATION", "none"},
};

} // namespace

StartEnvironment::StartEnvironment() {
    QCoreApplication::setAttribute(Qt::AA_DisableSessionManager);
    for (std::size_t i = 0; i < std::size(Settings); ++i)
        if (!qEnvironmentVariableIsSet(Settings[i].name) && qputenv(Settings[i].name, Settings[i].value))
            set_ |= 1u << i;
}

StartEnvironment::~StartEnvironment() {
    for (std::size_t i = 0; i < std::size(Settings); ++i)
        if (set_ & 1u << i)
            qunsetenv(Settings[i].name);
}

} // namespace Ostrel
