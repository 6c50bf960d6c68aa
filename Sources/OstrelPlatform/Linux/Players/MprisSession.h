#pragma once

#include "OstrelPlatform/Clock.h"
#include "OstrelPlatform/Linux/Players/BusConnection.h"
#include "OstrelPlatform/Linux/Players/MprisPlayer.h"
#include "OstrelPlatform/Linux/Players/MprisSelection.h"
#include "OstrelPlatform/PlayerTransport.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// One connection to the bus and what is known of the players on it. Everything is read once and then followed by
/// signals; of a player that plays, a poll asks for the position, which has no signal. Now and then it asks for
/// everything, since not all players signal what they do. One thread.
class MprisSession {
public:
    /// Of deadlines, which the bus waits for.
    using Deadline = BusConnection::Clock::time_point;
    /// A poll that finds a player playing costs one round trip, one that finds it paused none, but after this time.
    static constexpr double RefreshIntervalSeconds = 2;
    static constexpr std::size_t MaxPlayers = 64;

    /// Null when there is no bus. The clock tells how old an answer is, and outlives the session.
    static std::unique_ptr<MprisSession> open(const Clock& clock, Deadline deadline);

    /// Whether the bus is still there.
    bool isOpen() const { return connection_->isOpen(); }
    /// Reads what has arrived, then waits until it is known which player is meant. Null when there is none or it did
    /// not introduce itself in time.
    const MprisPlayer* find(const PlayerTarget& target, Deadline deadline);
    /// Whether the bus has told which players there are.
    bool knowsPlayers() const { return hasNames_; }
    /// The same player brought up to date. Null when it has gone or does not answer in time; one that let an earlier
    /// deadline pass is not waited for again until it answers.
    const MprisPlayer* refresh(const MprisPlayer& player, Deadline deadline);
    /// Sends a call to a player without waiting for a reply.
    void send(BusMessage message);

private:
    struct Known {
        MprisPlayer player;
        /// Replies that are outstanding, by serial; 0 for none.
        BusConnection::Serial applicationReply = 0;
        BusConnection::Serial propertiesReply = 0;
        BusConnection::Serial positionReply = 0;
        /// Whether both its descriptions have come, and whether they were none.
        bool isDescribed = false;
        bool isBroken = false;
        /// Whether something said by its properties is no longer so.
        bool isStale = false;
        /// Whether it let a deadline pass and has not answered since.
        bool isSilent = false;
        /// Uptimes.
        double refreshed = 0;
        double asked = 0;

        bool isAwaited() const { return applicationReply != 0 || propertiesReply != 0 || positionReply != 0; }
    };
    using Players = std::map<std::string, Known, std::less<>>;

    MprisSession(const Clock& clock, std::unique_ptr<BusConnection> connection);

    void subscribe();
    void add(const std::string& busName, const std::string& owner);
    void askAll(Known& known, const char* interface, BusConnection::Serial& reply);
    void askPosition(Known& known);
    /// Asks for what is due, if anything.
    void askWhatIsDue(Known& known);
    /// Handles messages until `isDone` or the deadline; the first round handles those that are there already.
    template <typename Condition> bool handleUntil(Deadline deadline, Condition isDone);
    void handle(DBusMessage& message);
    void handleReply(DBusMessage& message, BusConnection::Serial serial, std::string_view sender);
    void handleNames(DBusMessage& message);
    void handleOwnerChange(DBusMessage& message);
    void handleChange(DBusMessage& message, Known& known);
    void handleSeek(DBusMessage& message, Known& known);
    std::vector<MprisSelection::Candidate> candidates() const;
    bool isDecided(const PlayerTarget& target) const;

    const Clock& clock_;
    std::unique_ptr<BusConnection> connection_;
    BusConnection::Serial namesReply_ = 0;
    bool hasNames_ = false;
    /// By name on the bus.
    Players players_;
    MprisSelection selection_;
};

} // namespace Ostrel
