#pragma once

#include <memory>

namespace Ostrel {

class AudioSpectrum;
class Clock;
class FontRegistrar;
class HostStatistics;
class MainQueue;
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
};

} // namespace Ostrel
