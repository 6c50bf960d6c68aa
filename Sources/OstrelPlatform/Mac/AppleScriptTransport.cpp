#include "OstrelPlatform/Mac/AppleScriptTransport.h"

#include "OstrelPlatform/Mac/AppleScriptCommands.h"
#include "OstrelPlatform/Mac/AppleScriptStates.h"

#include <utility>

namespace Ostrel {

AppleScriptTransport::AppleScriptTransport(Executor osascriptExecutor)
    : osascriptExecutor_(std::move(osascriptExecutor)) { }

PlayerTransport::Poll AppleScriptTransport::poll(const PlayerTarget& target) {
    return [this, script = AppleScriptStates::scriptFor(target.name)] { return osascriptExecutor_(script); };
}

PlayerTransport::Work AppleScriptTransport::perform(const PlayerTarget& target, const PlayerCommand& command) {
    return [this, script = AppleScriptCommands::script(target.name, command)] { osascriptExecutor_(script); };
}

} // namespace Ostrel
