#include "Support/ScriptedPlayer.h"

#include "OstrelPlatform/Linux/Players/BusValue.h"

#include <dbus/dbus.h>

#include <cstdlib>

namespace Ostrel {

namespace {

constexpr const char* ObjectPathOfPlayers = "/org/mpris/MediaPlayer2";
constexpr const char* PlayerInterface = "org.mpris.MediaPlayer2.Player";

using Value = ScriptedPlayer::Value;

const char* signatureOf(const Value& value) {
    constexpr const char* Signatures[] = {"b", "i", "u", "x", "t", "d", "s", "o", "as", "(s)"};
    return Signatures[value.index()];
}

void appendText(DBusMessageIter& cursor, int type, const std::string& text) {
    const char* pointer = text.c_str();
    dbus_message_iter_append_basic(&cursor, type, &pointer);
}

struct Appender {
    DBusMessageIter& cursor;

    template <typename Number> void number(int type, Number value) {
        dbus_message_iter_append_basic(&cursor, type, &value);
    }
    void operator()(bool value) { number(DBUS_TYPE_BOOLEAN, dbus_bool_t{value}); }
    void operator()(std::int32_t value) { number(DBUS_TYPE_INT32, value); }
    void operator()(std::uint32_t value) { number(DBUS_TYPE_UINT32, value); }
    void operator()(std::int64_t value) { number(DBUS_TYPE_INT64, value); }
    void operator()(std::uint64_t value) { number(DBUS_TYPE_UINT64, value); }
    void operator()(double value) { number(DBUS_TYPE_DOUBLE, value); }
    void operator()(const std::string& value) { appendText(cursor, DBUS_TYPE_STRING, value); }
    void operator()(const ScriptedPlayer::ObjectPath& value) { appendText(cursor, DBUS_TYPE_OBJECT_PATH, value.path); }
    void operator()(const std::vector<std::string>& values) {
        DBusMessageIter list;
        dbus_message_iter_open_container(&cursor, DBUS_TYPE_ARRAY, "s", &list);
        for (const auto& value : values)
            appendText(list, DBUS_TYPE_STRING, value);
        dbus_message_iter_close_container(&cursor, &list);
    }
    void operator()(const ScriptedPlayer::Structure&) {
        DBusMessageIter fields;
        dbus_message_iter_open_container(&cursor, DBUS_TYPE_STRUCT, nullptr, &fields);
        appendText(fields, DBUS_TYPE_STRING, "field");
        dbus_message_iter_close_container(&cursor, &fields);
    }
};

void appendVariant(DBusMessageIter& cursor, const Value& value) {
    DBusMessageIter variant;
    dbus_message_iter_open_container(&cursor, DBUS_TYPE_VARIANT, signatureOf(value), &variant);
    std::visit(Appender{variant}, value);
    dbus_message_iter_close_container(&cursor, &variant);
}

void appendEntries(DBusMessageIter& entries, const ScriptedPlayer::Dictionary& values) {
    for (const auto& [key, value] : values) {
        DBusMessageIter entry;
        dbus_message_iter_open_container(&entries, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
        appendText(entry, DBUS_TYPE_STRING, key);
        appendVariant(entry, value);
        dbus_message_iter_close_container(&entries, &entry);
    }
}

/// The argument at that place as text, for the record.
std::string argumentText(DBusMessage& message, int place) {
    DBusMessageIter cursor;
    dbus_message_iter_init(&message, &cursor);
    for (int i = 0; i < place; ++i)
        dbus_message_iter_next(&cursor);
    const auto value = readBusValue(cursor);
    if (const auto* truth = std::get_if<bool>(&value.content))
        return *truth ? "true" : "false";
    if (const auto number = value.number())
        return std::to_string(*number);
    return value.text().value_or("");
}

} // namespace

ScriptedPlayer::ScriptedPlayer(const std::string& name, Dictionary properties, Dictionary metadata)
    // Not the library's own way to the session, which remembers the first one.
    : connection_(dbus_connection_open_private(std::getenv("DBUS_SESSION_BUS_ADDRESS"), nullptr))
    , properties_(std::move(properties))
    , metadata_(std::move(metadata)) {
    dbus_connection_set_exit_on_disconnect(connection_, FALSE);
    dbus_bus_register(connection_, nullptr);
    dbus_bus_request_name(
        connection_, ("org.mpris.MediaPlayer2." + name).c_str(), DBUS_NAME_FLAG_REPLACE_EXISTING, nullptr);
    thread_ = std::thread([this] { run(); });
}

ScriptedPlayer::~ScriptedPlayer() {
    ends_ = true;
    thread_.join();
    dbus_connection_close(connection_);
    dbus_connection_unref(connection_);
}

void ScriptedPlayer::setProperties(Dictionary properties) {
    const std::scoped_lock lock(mutex_);
    properties_ = std::move(properties);
}

void ScriptedPlayer::setMetadata(Dictionary metadata) {
    const std::scoped_lock lock(mutex_);
    metadata_ = std::move(metadata);
}

std::vector<std::string> ScriptedPlayer::takeCalls() {
    const std::scoped_lock lock(mutex_);
    return std::exchange(calls_, {});
}

void ScriptedPlayer::run() {
    while (!ends_ && dbus_connection_read_write(connection_, 5)) {
        while (auto* message = dbus_connection_pop_message(connection_)) {
            const bool isCall = dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_METHOD_CALL;
            if (isCall && answers_) {
                answer(*message);
            } else if (isCall) {
                const std::scoped_lock lock(mutex_);
                calls_.emplace_back("unanswered");
            }
            dbus_message_unref(message);
        }
    }
}

void ScriptedPlayer::answer(DBusMessage& call) {
    const std::string method = dbus_message_get_member(&call);
    auto* reply = replyTo(call, method);
    if (!dbus_message_get_no_reply(&call))
        dbus_connection_send(connection_, reply, nullptr);
    dbus_message_unref(reply);
}

DBusMessage* ScriptedPlayer::replyTo(DBusMessage& call, const std::string& method) {
    const std::scoped_lock lock(mutex_);
    auto* reply = dbus_message_new_method_return(&call);
    DBusMessageIter arguments;
    dbus_message_iter_init_append(reply, &arguments);
    std::string record = method;
    if (method == "GetAll") {
        appendProperties(arguments, properties_, argumentText(call, 0) == PlayerInterface);
    } else if (method == "Get") {
        record += " " + argumentText(call, 1);
        for (const auto& [name, value] : properties_) {
            if (name == argumentText(call, 1))
                appendVariant(arguments, value);
        }
    } else if (method == "Set") {
        record += " " + argumentText(call, 1) + "=" + argumentText(call, 2);
    } else if (method == "SetPosition") {
        record += " " + argumentText(call, 0) + " " + argumentText(call, 1);
    } else if (method == "Seek") {
        record += " " + argumentText(call, 0);
    }
    calls_.push_back(record);
    return reply;
}

void ScriptedPlayer::appendProperties(DBusMessageIter& arguments, const Dictionary& properties, bool hasMetadata) {
    DBusMessageIter entries;
    dbus_message_iter_open_container(&arguments, DBUS_TYPE_ARRAY, "{sv}", &entries);
    appendEntries(entries, properties);
    if (hasMetadata) {
        DBusMessageIter entry;
        DBusMessageIter variant;
        DBusMessageIter metadata;
        dbus_message_iter_open_container(&entries, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
        appendText(entry, DBUS_TYPE_STRING, "Metadata");
        dbus_message_iter_open_container(&entry, DBUS_TYPE_VARIANT, "a{sv}", &variant);
        dbus_message_iter_open_container(&variant, DBUS_TYPE_ARRAY, "{sv}", &metadata);
        appendEntries(metadata, metadata_);
        dbus_message_iter_close_container(&variant, &metadata);
        dbus_message_iter_close_container(&entry, &variant);
        dbus_message_iter_close_container(&entries, &entry);
    }
    dbus_message_iter_close_container(&arguments, &entries);
}

void ScriptedPlayer::signal(Dictionary changed, std::vector<std::string> invalidated) {
    auto* message = dbus_message_new_signal(ObjectPathOfPlayers, DBUS_INTERFACE_PROPERTIES, "PropertiesChanged");
    DBusMessageIter arguments;
    dbus_message_iter_init_append(message, &arguments);
    appendText(arguments, DBUS_TYPE_STRING, PlayerInterface);
    {
        const std::scoped_lock lock(mutex_);
        appendProperties(arguments, changed, false);
    }
    Appender{arguments}(invalidated);
    emit(message);
}

void ScriptedPlayer::signalMetadata() {
    auto* message = dbus_message_new_signal(ObjectPathOfPlayers, DBUS_INTERFACE_PROPERTIES, "PropertiesChanged");
    DBusMessageIter arguments;
    dbus_message_iter_init_append(message, &arguments);
    appendText(arguments, DBUS_TYPE_STRING, PlayerInterface);
    {
        const std::scoped_lock lock(mutex_);
        appendProperties(arguments, {}, true);
    }
    Appender{arguments}(std::vector<std::string>());
    emit(message);
}

void ScriptedPlayer::signalSeeked(std::int64_t microseconds) {
    auto* message = dbus_message_new_signal(ObjectPathOfPlayers, PlayerInterface, "Seeked");
    dbus_message_append_args(message, DBUS_TYPE_INT64, &microseconds, DBUS_TYPE_INVALID);
    emit(message);
}

void ScriptedPlayer::emit(DBusMessage* message) {
    dbus_connection_send(connection_, message, nullptr);
    dbus_connection_flush(connection_);
    dbus_message_unref(message);
}

} // namespace Ostrel
