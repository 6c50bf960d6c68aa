#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

struct DBusConnection;
struct DBusMessage;

namespace Ostrel {

struct BusMessageRelease {
    void operator()(DBusMessage* message) const;
};
using BusMessage = std::unique_ptr<DBusMessage, BusMessageRelease>;

/// A connection of our own to the session's bus. Messages are read when somebody asks for them: nothing runs or wakes
/// in between, and no call waits longer than its deadline, whatever the peers or the bus itself do. One thread at a
/// time.
class BusConnection {
public:
    using Clock = std::chrono::steady_clock;
    using Serial = std::uint32_t;

    /// Null when there is no bus or it does not answer in time.
    static std::unique_ptr<BusConnection> open(Clock::time_point deadline);
    ~BusConnection();
    BusConnection(const BusConnection&) = delete;
    BusConnection& operator=(const BusConnection&) = delete;

    /// Puts a message on its way; 0 when that is impossible. The reply comes as a message with this serial.
    Serial send(BusMessage message);
    /// Signals that match the rule are received from now on.
    void addMatch(const std::string& rule);
    /// The next message; null at the deadline, or when the connection has ended.
    BusMessage receive(Clock::time_point deadline);
    bool isOpen() const;

private:
    explicit BusConnection(DBusConnection* connection);
    bool sayHello(Clock::time_point deadline);

    DBusConnection* connection_;
};

/// A call of a method without arguments so far.
BusMessage busCall(const std::string& name, const char* path, const char* interface, const char* method);

} // namespace Ostrel
