#include "OstrelPlatform/Linux/Players/MprisSession.h"

#include <dbus/dbus.h>

#include <algorithm>

namespace Ostrel {

namespace {

constexpr const char* ObjectPath = "/org/mpris/MediaPlayer2";
constexpr const char* ApplicationInterface = "org.mpris.MediaPlayer2";
constexpr const char* PlayerInterface = "org.mpris.MediaPlayer2.Player";
/// Of those that nobody waits for; more are left for the next call.
constexpr int MaxMessagesAtOnce = 1000;
/// For so long, a position that came with everything else is that of now.
constexpr double FreshSeconds = 0.05;
/// A silent player is asked again after this time, should its answer have been lost.
constexpr double PatienceWithSilenceSeconds = 10;

BusMessage propertiesCall(const std::string& busName, const char* method) {
    auto message = busCall(busName, ObjectPath, DBUS_INTERFACE_PROPERTIES, method);
    // A poll must not start a player that has just been closed.
    dbus_message_set_auto_start(message.get(), FALSE);
    return message;
}

bool isSignal(DBusMessage& message, const char* interface, const char* member) {
    return dbus_message_is_signal(&message, interface, member);
}

/// The value of the argument at that place; nothing when there are fewer.
BusValue argument(DBusMessage& message, int place) {
    DBusMessageIter cursor;
    if (!dbus_message_iter_init(&message, &cursor))
        return {};
    for (int i = 0; i < place; ++i) {
        if (!dbus_message_iter_next(&cursor))
            return {};
    }
    return readBusValue(cursor);
}

bool isError(DBusMessage& message) {
    return dbus_message_get_type(&message) == DBUS_MESSAGE_TYPE_ERROR;
}

} // namespace

MprisSession::MprisSession(const Clock& clock, std::unique_ptr<BusConnection> connection)
    : clock_(clock)
    , connection_(std::move(connection)) { }

std::unique_ptr<MprisSession> MprisSession::open(const Clock& clock, Deadline deadline) {
    auto connection = BusConnection::open(deadline);
    if (!connection)
        return nullptr;
    std::unique_ptr<MprisSession> session(new MprisSession(clock, std::move(connection)));
    session->subscribe();
    return session;
}

void MprisSession::subscribe() {
    connection_->addMatch("type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                          "member='NameOwnerChanged',arg0namespace='org.mpris.MediaPlayer2'");
    connection_->addMatch("type='signal',path='/org/mpris/MediaPlayer2',interface='org.freedesktop.DBus.Properties',"
                          "member='PropertiesChanged',arg0namespace='org.mpris.MediaPlayer2'");
    connection_->addMatch(
        "type='signal',path='/org/mpris/MediaPlayer2',interface='org.mpris.MediaPlayer2.Player',member='Seeked'");
    namesReply_ = connection_->send(busCall(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "ListNames"));
}

const MprisPlayer* MprisSession::find(const PlayerTarget& target, Deadline deadline) {
    if (!handleUntil(deadline, [&] { return isDecided(target); })) {
        for (auto& [name, known] : players_)
            known.isSilent = known.isSilent || !known.isDescribed;
    }
    return selection_.select(candidates(), target);
}

const MprisPlayer* MprisSession::refresh(const MprisPlayer& player, Deadline deadline) {
    const auto busName = player.busName;
    const auto known = [&] {
        const auto found = players_.find(busName);
        return found == players_.end() ? nullptr : &found->second;
    };
    auto* asked = known();
    if (!asked)
        return nullptr;
    if (asked->isAwaited() && asked->isSilent && clock_.uptimeSeconds() - asked->asked < PatienceWithSilenceSeconds)
        return nullptr;
    askWhatIsDue(*asked);
    const bool isDone = handleUntil(deadline, [&] { return !known() || !known()->isAwaited(); });
    asked = known();
    if (asked && !isDone)
        asked->isSilent = true;
    return asked && isDone ? &asked->player : nullptr;
}

void MprisSession::send(BusMessage message) {
    if (!message)
        return;
    dbus_message_set_auto_start(message.get(), FALSE);
    dbus_message_set_no_reply(message.get(), TRUE);
    connection_->send(std::move(message));
}

void MprisSession::add(const std::string& busName, const std::string& owner) {
    if (players_.size() >= MaxPlayers)
        return;
    auto& known = players_[busName];
    known.player.busName = busName;
    known.player.owner = owner;
    askAll(known, ApplicationInterface, known.applicationReply);
    askAll(known, PlayerInterface, known.propertiesReply);
}

void MprisSession::askAll(Known& known, const char* interface, BusConnection::Serial& reply) {
    auto message = propertiesCall(known.player.busName, "GetAll");
    dbus_message_append_args(message.get(), DBUS_TYPE_STRING, &interface, DBUS_TYPE_INVALID);
    reply = connection_->send(std::move(message));
    known.asked = clock_.uptimeSeconds();
}

void MprisSession::askPosition(Known& known) {
    const char* interface = PlayerInterface;
    const char* name = "Position";
    auto message = propertiesCall(known.player.busName, "Get");
    dbus_message_append_args(message.get(), DBUS_TYPE_STRING, &interface, DBUS_TYPE_STRING, &name, DBUS_TYPE_INVALID);
    known.positionReply = connection_->send(std::move(message));
    known.asked = clock_.uptimeSeconds();
}

void MprisSession::askWhatIsDue(Known& known) {
    if (known.isAwaited() && !known.isSilent)
        return;
    const double age = clock_.uptimeSeconds() - known.refreshed;
    if (known.isSilent || known.isStale || age >= RefreshIntervalSeconds) {
        known.positionReply = 0;
        askAll(known, PlayerInterface, known.propertiesReply);
    } else if (known.player.isPlaying() && age >= FreshSeconds) {
        askPosition(known);
    }
}

template <typename Condition> bool MprisSession::handleUntil(Deadline deadline, Condition isDone) {
    // A peer that never stops sending is listened to no longer than the others are waited for.
    for (int handled = 0; BusConnection::Clock::now() < deadline && (handled < MaxMessagesAtOnce || !isDone());
         ++handled) {
        const auto message = connection_->receive(isDone() ? Deadline() : deadline);
        if (!message)
            break;
        handle(*message);
    }
    return isDone();
}

void MprisSession::handle(DBusMessage& message) {
    const char* sender = dbus_message_get_sender(&message);
    if (const auto serial = dbus_message_get_reply_serial(&message); serial != 0)
        return handleReply(message, serial, sender ? sender : "");
    if (!sender)
        return;
    if (isSignal(message, DBUS_INTERFACE_DBUS, "NameOwnerChanged"))
        return handleOwnerChange(message);
    for (auto& [name, known] : players_) {
        if (known.player.owner != sender)
            continue;
        if (isSignal(message, DBUS_INTERFACE_PROPERTIES, "PropertiesChanged"))
            handleChange(message, known);
        else if (isSignal(message, PlayerInterface, "Seeked"))
            handleSeek(message, known);
    }
}

void MprisSession::handleReply(DBusMessage& message, BusConnection::Serial serial, std::string_view sender) {
    if (serial == namesReply_)
        return handleNames(message);
    for (auto& [name, known] : players_) {
        if (serial == known.applicationReply) {
            known.applicationReply = 0;
        } else if (serial == known.propertiesReply) {
            known.propertiesReply = 0;
            known.isStale = false;
            known.isBroken = isError(message);
            known.refreshed = clock_.uptimeSeconds();
        } else if (serial == known.positionReply) {
            known.positionReply = 0;
            if (!isError(message))
                known.player.setPosition(argument(message, 0));
            known.isSilent = false;
            return;
        } else {
            continue;
        }
        if (!isError(message)) {
            known.player.owner = sender;
            known.player.apply(argument(message, 0).dictionary());
        }
        known.isDescribed = known.applicationReply == 0 && known.propertiesReply == 0;
        known.isSilent = known.isSilent && !known.isDescribed;
        return;
    }
}

void MprisSession::handleNames(DBusMessage& message) {
    namesReply_ = 0;
    hasNames_ = !isError(message);
    DBusMessageIter cursor;
    if (!hasNames_ || !dbus_message_iter_init(&message, &cursor)
        || dbus_message_iter_get_arg_type(&cursor) != DBUS_TYPE_ARRAY)
        return;
    DBusMessageIter names;
    dbus_message_iter_recurse(&cursor, &names);
    for (; dbus_message_iter_get_arg_type(&names) == DBUS_TYPE_STRING; dbus_message_iter_next(&names)) {
        const char* name = nullptr;
        dbus_message_iter_get_basic(&names, &name);
        if (std::string_view(name).starts_with(MprisPlayer::NamePrefix) && !players_.contains(name))
            add(name, "");
    }
}

void MprisSession::handleOwnerChange(DBusMessage& message) {
    const char* sender = dbus_message_get_sender(&message);
    const auto name = argument(message, 0).text().value_or("");
    if (std::string_view(sender) != DBUS_SERVICE_DBUS || !name.starts_with(MprisPlayer::NamePrefix))
        return;
    players_.erase(name);
    if (const auto owner = argument(message, 2).text().value_or(""); !owner.empty())
        add(name, owner);
}

void MprisSession::handleChange(DBusMessage& message, Known& known) {
    const auto changed = argument(message, 1);
    known.player.apply(changed.dictionary());
    // With another state or track comes another position.
    known.isStale = known.isStale || argument(message, 2).text().value_or("") != ""
        || changed.dictionary().contains("PlaybackStatus") || changed.dictionary().contains("Metadata");
}

void MprisSession::handleSeek(DBusMessage& message, Known& known) {
    known.player.setPosition(argument(message, 0));
}

std::vector<MprisSelection::Candidate> MprisSession::candidates() const {
    std::vector<MprisSelection::Candidate> result;
    for (const auto& [name, known] : players_) {
        if (known.isDescribed && !known.isBroken)
            result.push_back({&known.player, known.isSilent});
    }
    return result;
}

bool MprisSession::isDecided(const PlayerTarget& target) const {
    if (!hasNames_)
        return false;
    const auto isSettled = [](const auto& entry) { return entry.second.isDescribed || entry.second.isSilent; };
    return std::ranges::all_of(players_, isSettled) || MprisSelection::called(candidates(), target.name);
}

} // namespace Ostrel
