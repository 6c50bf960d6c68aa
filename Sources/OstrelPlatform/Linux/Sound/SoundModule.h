#pragma once

namespace Ostrel {

class AudioSystem;

/// The one symbol of the module that talks to the sound server; the caller owns the result, which is null when the
/// machine lacks what it needs.
using MakeAudioSystem = AudioSystem* (*)();
inline constexpr const char* MakeAudioSystemName = "ostrelMakeAudioSystem";

} // namespace Ostrel
