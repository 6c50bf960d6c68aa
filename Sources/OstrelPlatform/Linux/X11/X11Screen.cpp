#include "OstrelPlatform/Linux/X11/X11Screen.h"

#include <vector>

namespace Ostrel::X11Screen {

namespace {

constexpr char WindowClass[] = "ostrel-gui\0dev.ostrel.gui";

} // namespace

int number() {
    char* host = nullptr;
    int display = 0;
    int screen = 0;
    if (xcb_parse_display(nullptr, &host, &display, &screen))
        std::free(host);
    return screen;
}

xcb_screen_t* current(xcb_connection_t* connection) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int left = number(); left > 0 && screens.rem; --left)
        xcb_screen_next(&screens);
    return screens.rem ? screens.data : nullptr;
}

std::optional<Visual> visualOf(const xcb_screen_t* screen, xcb_visualid_t id) {
    for (auto depths = xcb_screen_allowed_depths_iterator(screen); depths.rem; xcb_depth_next(&depths))
        for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem; xcb_visualtype_next(&visuals))
            if (visuals.data->visual_id == id)
                return Visual{id, depths.data->depth};
    return std::nullopt;
}

bool hasPlainPixels(xcb_connection_t* connection) {
    const auto* setup = xcb_get_setup(connection);
    if (setup->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST || Q_BYTE_ORDER != Q_LITTLE_ENDIAN)
        return false;
    for (auto formats = xcb_setup_pixmap_formats_iterator(setup); formats.rem; xcb_format_next(&formats)) {
        const auto& format = *formats.data;
        if ((format.depth == 24 || format.depth == 32) && (format.bits_per_pixel != 32 || format.scanline_pad != 32))
            return false;
    }
    return true;
}

std::string_view windowClass() {
    return {WindowClass, sizeof WindowClass};
}

void intern(xcb_connection_t* connection, const QByteArray* names, std::size_t count, xcb_atom_t* atoms) {
    std::vector<xcb_intern_atom_cookie_t> cookies;
    for (std::size_t i = 0; i < count; ++i)
        cookies.push_back(
            xcb_intern_atom(connection, false, static_cast<std::uint16_t>(names[i].size()), names[i].constData()));
    for (std::size_t i = 0; i < count; ++i) {
        const Answer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookies[i], nullptr));
        atoms[i] = reply ? reply->atom : 0;
    }
}

} // namespace Ostrel::X11Screen
