#include "OstrelPlatform/Linux/Players/BusConnection.h"

#include <dbus/dbus.h>

#include <algorithm>
#include <cstdlib>

namespace Ostrel {

namespace {

/// A cover may travel inside a player's metadata; what is larger ends the connection, which is then made anew.
constexpr long MaxMessageBytes = 16L * 1024 * 1024;

std::string sessionAddress() {
    if (const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS"); address && *address)
        return address;
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    return folder && *folder ? "unix:path=" + std::string(folder) + "/bus" : std::string();
}

int millisecondsUntil(BusConnection::Clock::time_point deadline) {
    using namespace std::chrono;
    const auto left = duration_cast<milliseconds>(deadline - BusConnection::Clock::now()).count();
    return static_cast<int>(std::clamp<std::int64_t>(left, 0, 60000));
}

} // namespace

void BusMessageRelease::operator()(DBusMessage* message) const {
    dbus_message_unref(message);
}

BusMessage busCall(const std::string& name, const char* path, const char* interface, const char* method) {
    return BusMessage(dbus_message_new_method_call(name.c_str(), path, interface, method));
}

BusConnection::BusConnection(DBusConnection* connection)
    : connection_(connection) {
    dbus_connection_set_exit_on_disconnect(connection_, FALSE);
    dbus_connection_set_max_message_size(connection_, MaxMessageBytes);
    dbus_connection_set_max_received_size(connection_, MaxMessageBytes);
}

BusConnection::~BusConnection() {
    dbus_connection_close(connection_);
    dbus_connection_unref(connection_);
}

std::unique_ptr<BusConnection> BusConnection::open(Clock::time_point deadline) {
    const auto address = sessionAddress();
    if (address.empty())
        return nullptr;
    // Other threads of the program may use the library too.
    dbus_threads_init_default();
    DBusConnection* opened = dbus_connection_open_private(address.c_str(), nullptr);
    if (!opened)
        return nullptr;
    std::unique_ptr<BusConnection> connection(new BusConnection(opened));
    return connection->sayHello(deadline) ? std::move(connection) : nullptr;
}

/// Sends the greeting with our own deadline: the library's call waits for half a minute when the bus hangs.
bool BusConnection::sayHello(Clock::time_point deadline) {
    const auto serial = send(busCall(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "Hello"));
    while (serial != 0) {
        const auto message = receive(deadline);
        if (!message)
            return false;
        if (dbus_message_get_reply_serial(message.get()) == serial)
            return dbus_message_get_type(message.get()) == DBUS_MESSAGE_TYPE_METHOD_RETURN;
    }
    return false;
}

BusConnection::Serial BusConnection::send(BusMessage message) {
    Serial serial = 0;
    if (!message || !dbus_connection_send(connection_, message.get(), &serial))
        return 0;
    return serial;
}

void BusConnection::addMatch(const std::string& rule) {
    auto message = busCall(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "AddMatch");
    const char* text = rule.c_str();
    dbus_message_append_args(message.get(), DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
    dbus_message_set_no_reply(message.get(), TRUE);
    send(std::move(message));
}

BusMessage BusConnection::receive(Clock::time_point deadline) {
    while (true) {
        if (auto* message = dbus_connection_pop_message(connection_))
            return BusMessage(message);
        const int wait = millisecondsUntil(deadline);
        // Also writes what is on its way; false once the connection has ended and all is read.
        if (!dbus_connection_read_write(connection_, wait))
            return BusMessage(dbus_connection_pop_message(connection_));
        if (wait > 0)
            continue;
        return BusMessage(dbus_connection_pop_message(connection_));
    }
}

bool BusConnection::isOpen() const {
    return dbus_connection_get_is_connected(connection_);
}

} // namespace Ostrel
