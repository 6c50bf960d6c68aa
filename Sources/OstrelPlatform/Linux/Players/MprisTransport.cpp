#include "OstrelPlatform/Linux/Players/MprisTransport.h"

#include "OstrelPlatform/Linux/Desktop/DesktopEntries.h"
#include "OstrelPlatform/Linux/Players/MprisCommands.h"
#include "OstrelPlatform/Linux/Players/MprisSession.h"

#include <optional>
#include <utility>

namespace Ostrel {

namespace {

using Kind = PlayerCommand::Kind;

} // namespace

MprisTransport::MprisTransport(const Clock& clock, Launch launch, std::chrono::milliseconds timeout)
    : clock_(clock)
    , launch_(std::move(launch))
    , timeout_(timeout) { }

MprisTransport::~MprisTransport() = default;

PlayerTransport::Poll MprisTransport::poll(const PlayerTarget& target) {
    return [this, target] { return answer(target); };
}

PlayerTransport::Work MprisTransport::perform(const PlayerTarget& target, const PlayerCommand& command) {
    return [this, target, command] { carryOut(target, command); };
}

void MprisTransport::rest() {
    session_.reset();
}

MprisSession* MprisTransport::session(MprisSession::Deadline deadline) {
    if (!session_ || !session_->isOpen())
        session_ = MprisSession::open(clock_, deadline);
    return session_.get();
}

std::optional<std::string> MprisTransport::answer(const PlayerTarget& target) {
    const auto deadline = BusConnection::Clock::now() + timeout_;
    auto* bus = session(deadline);
    if (!bus)
        return "NOT_RUNNING";
    const auto* player = bus->find(target, deadline);
    if (!player)
        return bus->knowsPlayers() ? std::optional<std::string>("NOT_RUNNING") : std::nullopt;
    player = bus->refresh(*player, deadline);
    return player ? std::optional(player->answer()) : std::nullopt;
}

void MprisTransport::carryOut(const PlayerTarget& target, const PlayerCommand& command) {
    const auto deadline = BusConnection::Clock::now() + timeout_;
    auto* bus = session(deadline);
    const auto* player = bus ? bus->find(target, deadline) : nullptr;
    if (player && command.kind != Kind::OpenPlayer)
        return bus->send(MprisCommands::message(*player, command));
    if (command.kind != Kind::OpenPlayer && command.kind != Kind::TogglePlayer)
        return;
    // A path of another system is no reason not to open the player.
    auto start = DesktopEntries::commandForPath(command.path);
    if (!start && player)
        return bus->send(MprisCommands::message(*player, command));
    if (!start)
        start = DesktopEntries::commandForApplication(target.name);
    if (start)
        launch_(start->program, start->arguments);
}

} // namespace Ostrel
