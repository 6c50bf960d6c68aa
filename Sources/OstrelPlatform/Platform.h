#pragma once

#include <memory>

namespace Ostrel {

class AudioSpectrum;
class Clock;
class DesktopAppearance;
class FontRegistrar;
class HostStatistics;
class MainQueue;
class MediaPlayerBridges;
class NetworkProbe;
class PictureColors;
class ProgramRunner;
class RecycleManagerBackend;
class RemoteReader;
class ScriptEngine;
class SerialQueue;
class SoundControl;
class WebFetcher;
class Workspace;

/// The operating system as one replaceable whole: references to the adapters that the program chose at its start, or
/// to a test's. They outlive everything that is given them.
struct Platform {
    Clock& clock;
    MainQueue& mainQueue;
    HostStatistics& hostStatistics;
    FontRegistrar& fonts;
    RemoteReader& remoteReader;
    /// Null where nothing listens to the machine's sound.
    AudioSpectrum* audioSpectrum = nullptr;
    /// Null where nothing can be opened.
    Workspace* workspace = nullptr;
    /// Null where the desktop tells nothing of how it looks.
    DesktopAppearance* appearance = nullptr;
    /// Null where no music player is asked.
    MediaPlayerBridges* mediaPlayers = nullptr;
    /// Null where no picture can be decoded.
    PictureColors* pictures = nullptr;
    /// Null where there is no trash.
    RecycleManagerBackend* recycleManager = nullptr;
    /// Null where no script runs.
    ScriptEngine* scripts = nullptr;
    /// Null where no program may be started and heard.
    ProgramRunner* programs = nullptr;
    /// Null where no page is fetched.
    WebFetcher* web = nullptr;
    /// Where measures do what would hold the main thread for a bounded time. Null: the main queue or a thread of their
    /// own does it.
    SerialQueue* worker = nullptr;
    /// Null where no address is asked how far it is.
    NetworkProbe* networkProbe = nullptr;
    /// Null where nothing controls the sound.
    SoundControl* soundControl = nullptr;
};

} // namespace Ostrel
