#pragma once

#include "OstrelPlatform/PlayerTransport.h"

#include <functional>
#include <optional>
#include <string>

namespace Ostrel {

/// Players that are told by scripts.
class AppleScriptTransport final : public PlayerTransport {
public:
    /// Runs a script and gives what it printed; absent when it failed. Blocks for a bounded time, on the bridge's
    /// queue.
    using Executor = std::function<std::optional<std::string>(const std::string& script)>;

    explicit AppleScriptTransport(Executor osascriptExecutor);

    Poll poll(const PlayerTarget& target) override;
    Work perform(const PlayerTarget& target, const PlayerCommand& command) override;

private:
    Executor osascriptExecutor_;
};

} // namespace Ostrel
