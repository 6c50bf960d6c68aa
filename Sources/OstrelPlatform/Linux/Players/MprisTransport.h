#pragma once

#include "OstrelPlatform/PlayerTransport.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

class Clock;
class MprisSession;

/// The music players on the session's bus. Connects at the first poll or command. When the player that a skin names is
/// not there, the one that is playing stands in for it, or else the first by name; a player that the user chose has no
/// stand-in.
class MprisTransport final : public PlayerTransport {
public:
    /// What a poll or command waits at most, altogether.
    static constexpr auto Timeout = std::chrono::milliseconds(1500);

    /// Starts a program at an absolute path; called on the bridge's queue.
    using Launch = std::function<void(const std::string& program, const std::vector<std::string>& arguments)>;

    /// The clock outlives the transport.
    MprisTransport(const Clock& clock, Launch launch, std::chrono::milliseconds timeout = Timeout);
    ~MprisTransport() override;

    Poll poll(const PlayerTarget& target) override;
    Work perform(const PlayerTarget& target, const PlayerCommand& command) override;
    void rest() override;

private:
    std::optional<std::string> answer(const PlayerTarget& target);
    void carryOut(const PlayerTarget& target, const PlayerCommand& command);
    MprisSession* session(std::chrono::steady_clock::time_point deadline);

    const Clock& clock_;
    Launch launch_;
    std::chrono::milliseconds timeout_;
    std::unique_ptr<MprisSession> session_;
};

} // namespace Ostrel
