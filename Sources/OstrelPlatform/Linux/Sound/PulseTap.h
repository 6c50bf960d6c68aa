#pragma once

#include "OstrelPlatform/AudioTap.h"
#include "OstrelPlatform/Linux/Sound/PulseConnection.h"
#include "OstrelPlatform/Linux/Sound/PulseRecording.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

/// Taps on a sound server that speaks PulseAudio's protocol. A process is what it plays, so a process that plays
/// nothing is not known; a tap is the monitor of the output on which the chosen sound goes out. All on the queue.
class PulseTap final : public AudioTap {
public:
    PulseTap(PulseSleeper& sleeper, ThreadSerialQueue& queue);

    bool isSupported() const override { return true; }
    bool hasCaptureAccess() const override { return true; }
    bool requestCaptureAccess() override { return true; }
    void bringApplicationForward() override { }

    std::optional<int> runningApplication(std::string_view bundleIdentifier) override;
    int currentProcess() const override;
    AudioObjectID processObject(int processID) override;

    AudioObjectResult createProcessTap(const AudioTapDescription& description) override;
    void destroyProcessTap(AudioObjectID tap) override;
    AudioObjectResult createAggregateDevice(const AudioAggregateDescription& description) override;
    void destroyAggregateDevice(AudioObjectID device) override;

    /// There is no output of its own for the system's sounds.
    AudioObjectID defaultSystemOutputDevice() override { return 0; }
    AudioObjectID defaultOutputDevice() override;
    std::optional<std::string> deviceUID(AudioObjectID device) override;
    std::optional<AudioStreamFormat> tapFormat(AudioObjectID tap) override;
    std::optional<AudioStreamFormat> streamFormat(AudioObjectID device, AudioScope scope) override;
    double nominalSampleRate(AudioObjectID device) override;

    AudioObjectResult createIOProc(AudioObjectID device, AudioIOBlock block, std::function<void()> onLost) override;
    void destroyIOProc(AudioObjectID device, AudioObjectID ioProc) override;
    AudioStatus startDevice(AudioObjectID device, AudioObjectID ioProc) override;
    void stopDevice(AudioObjectID device, AudioObjectID ioProc) override;

private:
    struct Tap {
        std::string uuid;
        PulseSource source;
    };

    std::optional<PulsePlayback> playbackOf(int processID);
    std::optional<PulseSource> sourceFor(const AudioTapDescription& description);
    const PulseSource* sourceOf(AudioObjectID device) const;

    ThreadSerialQueue& queue_;
    PulseConnection connection_;
    AudioObjectID lastID_ = 0;
    std::map<AudioObjectID, Tap> taps_;
    /// The tap of a device.
    std::map<AudioObjectID, AudioObjectID> devices_;
    std::map<AudioObjectID, std::unique_ptr<PulseRecording>> recordings_;
};

} // namespace Ostrel
