#pragma once

#include "OstrelPlatform/Linux/Players/BusConnection.h"
#include "OstrelPlatform/PlayerTransport.h"

namespace Ostrel {

struct MprisPlayer;

namespace MprisCommands {

/// The call that carries a command out on a player that is there: an open player comes forward, a toggled one ends.
/// Null when this player has no way to do it.
BusMessage message(const MprisPlayer& player, const PlayerCommand& command);

} // namespace MprisCommands

} // namespace Ostrel
