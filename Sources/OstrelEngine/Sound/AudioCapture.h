#pragma once

#include "OstrelPlatform/AudioTap.h"
#include "OstrelPlatform/Log.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class Clock;
class MainQueue;
class SpectrumAnalyzer;

/// Gets the machine's sound to the analyzer and keeps at it.
///
///     Idle --ensureStarted--> Starting --device started--> Listening --a buffer--> Running
///       any failure: Backing off for 2 s, then the next ensureStarted starts again
///       Listening, 2 s of nothing: the player's tap gives way to the global one, the global one backs off
///       Running, delivery ended by the sound system: Backing off
///       no taps on this system: never again
///
/// A tap can be made and yet stay silent, for as long as a permission is pending or nothing plays: hence the watchdog.
/// Retries have no timer of their own, they ride on the updates of the measures. What ends in "Locked" runs on the
/// system's queue.
class AudioCapture final : public std::enable_shared_from_this<AudioCapture> {
public:
    struct Environment {
        AudioSystem& system;
        SpectrumAnalyzer& analyzer;
        const Clock& clock;
        MainQueue& mainQueue;
        LogLine log;
    };

    /// What the environment names outlives the capture.
    explicit AudioCapture(Environment environment);

    /// Starts unless a start is under way, has succeeded, or failed less than 2 s ago. Main thread.
    void ensureStarted();

private:
    struct Resources {
        AudioObjectID tap = 0;
        AudioObjectID aggregate = 0;
        AudioObjectID ioProc = 0;
    };

    AudioTap& tap() { return environment_.system.tap(); }
    void log(std::string_view message) const;

    void startProcessTapCapture(bool preferSpotifyProcess);
    void startProcessTapCaptureLocked(bool preferSpotifyProcess);
    AudioTapDescription chooseTapLocked(bool preferSpotifyProcess);
    bool createResourcesLocked(const AudioTapDescription& description, Resources& made);
    std::optional<std::string> outputDeviceUIDLocked();
    void adoptFormatLocked(const Resources& made);
    std::optional<AudioStreamFormat> streamFormatLocked(AudioObjectID device);
    AudioObjectResult createIOProcLocked(AudioObjectID aggregate);
    void failStartLocked(std::string_view what, AudioStatus status, const Resources& made);
    void releaseLocked(const Resources& resources);
    void markProcessTapStartupFailedLocked();
    void stopProcessTapCaptureLocked();

    bool ensureScreenCaptureAccessLocked();
    bool requestScreenCaptureAccess();

    void scheduleProcessTapNoAudioFallbackLocked(double afterSeconds);
    void cancelWatchdogLocked() { ++watchdogNumber_; }
    void watchdogLocked(std::uint64_t number);
    void processTapLostLocked();
    void consumeProcessTapInput(AudioBufferList buffers);

    Environment environment_;
    /// A start was asked for and has not failed.
    bool startAttempted_ = false;
    Resources running_;
    std::optional<AudioStreamFormat> processTapFormat_;
    /// Of the watchdog that may still act; an older one finds itself cancelled.
    std::uint64_t watchdogNumber_ = 0;
    bool didReceiveProcessTapAudio_ = false;
    bool didLogFirstProcessTapBuffer_ = false;
    bool isUsingSpotifyProcessTap_ = false;
    bool hasRetriedGlobalTapAfterSpotifySilence_ = false;
    double nextTapStartupRetrySeconds_ = -std::numeric_limits<double>::infinity();
    std::vector<float> mono_;
};

} // namespace Ostrel
