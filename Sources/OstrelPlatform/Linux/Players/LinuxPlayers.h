#pragma once

#include <memory>
#include <string_view>

namespace Ostrel {

class PlayerTransport;
class SerialQueue;
struct Platform;

namespace LinuxPlayers {

/// The players on the session's bus, which need not run yet; never null. It starts programs through the workspace.
/// What the platform names outlives it.
std::unique_ptr<PlayerTransport> makeTransport(const Platform& platform);

/// A queue whose thread is named by the label, cut to the length that the system allows.
std::unique_ptr<SerialQueue> makeQueue(std::string_view label);

} // namespace LinuxPlayers

} // namespace Ostrel
