#pragma once

#include <QByteArray>

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string_view>

/// What several adapters ask of an X server.
namespace Ostrel::X11Screen {

/// Frees what xcb allocated.
struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply> using Answer = std::unique_ptr<Reply, Free>;

struct Visual {
    xcb_visualid_t id = 0;
    std::uint8_t depth = 0;
};

/// Of the screen that the program was started on.
int number();
/// The same screen as the server describes it; null when it has no such.
xcb_screen_t* current(xcb_connection_t* connection);
/// Absent when the screen has no such visual.
std::optional<Visual> visualOf(const xcb_screen_t* screen, xcb_visualid_t id);
/// Whether pictures of our images' format can be sent as they are.
bool hasPlainPixels(xcb_connection_t* connection);
/// Instance and class that desktop files and window rules know the program by, each with its zero byte.
std::string_view windowClass();

/// Writes the server's numbers for the names, asked for in one go; 0 where it gives none.
void intern(xcb_connection_t* connection, const QByteArray* names, std::size_t count, xcb_atom_t* atoms);
template <std::size_t Count>
std::array<xcb_atom_t, Count> intern(xcb_connection_t* connection, const std::array<QByteArray, Count>& names) {
    std::array<xcb_atom_t, Count> atoms{};
    intern(connection, names.data(), Count, atoms.data());
    return atoms;
}

} // namespace Ostrel::X11Screen
