#pragma once

#include "OstrelPlatform/PlayerTransport.h"

#include <string>
#include <string_view>

/// The scripts that tell an application to do something.
namespace Ostrel::AppleScriptCommands {

std::string script(std::string_view appName, const PlayerCommand& command);

/// Opens a file or application with the system's own tool.
std::string openPathScript(std::string_view path);

} // namespace Ostrel::AppleScriptCommands
