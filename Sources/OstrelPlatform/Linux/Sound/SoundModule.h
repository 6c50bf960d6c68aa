#pragma once

namespace Ostrel {

class AudioSystem;
class MainQueue;
class SoundControl;

/// The symbols of the module that talks to the sound server; the caller owns the results. The first is null when the
/// machine lacks what it needs.
using MakeAudioSystem = AudioSystem* (*)();
inline constexpr const char* MakeAudioSystemName = "ostrelMakeAudioSystem";
using MakeSoundControl = SoundControl* (*)(MainQueue&);
inline constexpr const char* MakeSoundControlName = "ostrelMakeSoundControl";

} // namespace Ostrel
