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
class PictureColors;
class RecycleManagerBackend;
class RemoteReader;
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
};

} // namespace Ostrel
