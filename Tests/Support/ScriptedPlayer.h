#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

struct DBusConnection;
struct DBusMessage;
struct DBusMessageIter;

namespace Ostrel {

/// A music player on the bus that says what the test says, true to the protocol or not, and writes down what it is
/// asked. It has a thread of its own.
class ScriptedPlayer {
public:
    struct ObjectPath {
        std::string path;
    };
    struct Structure { };
    using Value = std::variant<bool, std::int32_t, std::uint32_t, std::int64_t, std::uint64_t, double, std::string,
        ObjectPath, std::vector<std::string>, Structure>;
    using Dictionary = std::vector<std::pair<std::string, Value>>;

    /// The name without the part that all players share.
    explicit ScriptedPlayer(const std::string& name, Dictionary properties = {}, Dictionary metadata = {});
    /// Leaves the bus.
    ~ScriptedPlayer();

    void setProperties(Dictionary properties);
    void setMetadata(Dictionary metadata);
    /// Tells its listeners that these are so now.
    void signal(Dictionary changed, std::vector<std::string> invalidated = {});
    void signalMetadata();
    void signalSeeked(std::int64_t microseconds);
    /// From now on it takes messages and says nothing.
    void setAnswering(bool answers) { answers_ = answers; }

    /// "GetAll", "Get Position", "Set Volume=0.5", "Next", … and forgets them.
    std::vector<std::string> takeCalls();

private:
    void run();
    void answer(DBusMessage& call);
    DBusMessage* replyTo(DBusMessage& call, const std::string& method);
    void appendProperties(DBusMessageIter& arguments, const Dictionary& properties, bool hasMetadata);
    void emit(DBusMessage* message);

    DBusConnection* connection_;
    std::atomic<bool> answers_ = true;
    std::atomic<bool> ends_ = false;
    std::mutex mutex_;
    Dictionary properties_;
    Dictionary metadata_;
    std::vector<std::string> calls_;
    std::thread thread_;
};

} // namespace Ostrel
