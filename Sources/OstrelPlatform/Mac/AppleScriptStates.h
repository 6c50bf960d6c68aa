#pragma once

#include <string>
#include <string_view>

/// The scripts that print what an application is doing: "NOT_RUNNING", "STOPPED" or the payload. One property that
/// cannot be read costs one field.
namespace Ostrel::AppleScriptStates {

/// The script for an application of that name; the two that are known have their own.
std::string scriptFor(std::string_view appName);

std::string appleMusicScript();
std::string spotifyScript();
std::string genericPlayerScript(std::string_view appName);

} // namespace Ostrel::AppleScriptStates
