#include "OstrelPlatform/Linux/Players/MprisCommands.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelPlatform/Linux/Players/MprisPlayer.h"

#include <dbus/dbus.h>

#include <cmath>

namespace Ostrel::MprisCommands {

namespace {

using Kind = PlayerCommand::Kind;

constexpr const char* ObjectPath = "/org/mpris/MediaPlayer2";
constexpr const char* ApplicationInterface = "org.mpris.MediaPlayer2";
constexpr const char* PlayerInterface = "org.mpris.MediaPlayer2.Player";
constexpr double MicrosecondsPerSecond = 1e6;

BusMessage tellApplication(const MprisPlayer& player, const char* method) {
    return busCall(player.busName, ObjectPath, ApplicationInterface, method);
}

BusMessage tell(const MprisPlayer& player, const char* method) {
    return busCall(player.busName, ObjectPath, PlayerInterface, method);
}

/// Sets a property of the player; `type` is that of the value in the bus's own words.
template <typename Value> BusMessage set(const MprisPlayer& player, const char* name, const char* type, Value value) {
    auto message = busCall(player.busName, ObjectPath, DBUS_INTERFACE_PROPERTIES, "Set");
    const char* interface = PlayerInterface;
    dbus_message_append_args(message.get(), DBUS_TYPE_STRING, &interface, DBUS_TYPE_STRING, &name, DBUS_TYPE_INVALID);
    DBusMessageIter arguments;
    DBusMessageIter variant;
    dbus_message_iter_init_append(message.get(), &arguments);
    dbus_message_iter_open_container(&arguments, DBUS_TYPE_VARIANT, type, &variant);
    dbus_message_iter_append_basic(&variant, type[0], &value);
    dbus_message_iter_close_container(&arguments, &variant);
    return message;
}

std::int64_t microseconds(double seconds) {
    return numericAsInt64(std::round(seconds * MicrosecondsPerSecond));
}

/// To a place in the track; where the player has no name for the track, by the distance from where it is.
BusMessage setPosition(const MprisPlayer& player, double seconds) {
    const char* track = player.track.path.c_str();
    if (!player.track.path.empty() && dbus_validate_path(track, nullptr)) {
        auto message = tell(player, "SetPosition");
        const auto position = microseconds(seconds);
        dbus_message_append_args(
            message.get(), DBUS_TYPE_OBJECT_PATH, &track, DBUS_TYPE_INT64, &position, DBUS_TYPE_INVALID);
        return message;
    }
    auto message = tell(player, "Seek");
    const auto distance = microseconds(seconds - player.positionSeconds);
    dbus_message_append_args(message.get(), DBUS_TYPE_INT64, &distance, DBUS_TYPE_INVALID);
    return message;
}

} // namespace

BusMessage message(const MprisPlayer& player, const PlayerCommand& command) {
    switch (command.kind) {
    case Kind::Play:
        return tell(player, "Play");
    case Kind::Pause:
        return tell(player, "Pause");
    case Kind::PlayPause:
        return tell(player, "PlayPause");
    case Kind::Stop:
        return tell(player, "Stop");
    case Kind::Next:
        return tell(player, "Next");
    case Kind::Previous:
        return tell(player, "Previous");
    case Kind::SetPosition:
        return setPosition(player, command.seconds);
    case Kind::SetVolume:
        return set(player, "Volume", DBUS_TYPE_DOUBLE_AS_STRING, command.value / 100.0);
    case Kind::SetRating:
        return player.rating ? set(player, "Rating", DBUS_TYPE_DOUBLE_AS_STRING, command.value / 5.0) : nullptr;
    case Kind::SetShuffle:
        return set(player, "Shuffle", DBUS_TYPE_BOOLEAN_AS_STRING, dbus_bool_t{command.value != 0});
    case Kind::SetRepeat:
        return set(player, "LoopStatus", DBUS_TYPE_STRING_AS_STRING, command.value != 0 ? "Playlist" : "None");
    case Kind::OpenPlayer:
        return tellApplication(player, "Raise");
    case Kind::ClosePlayer:
    case Kind::TogglePlayer:
        return tellApplication(player, "Quit");
    }
    return nullptr;
}

} // namespace Ostrel::MprisCommands
