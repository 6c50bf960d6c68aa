#pragma once

#include "OstrelPlatform/AudioTap.h"
#include "OstrelPlatform/SerialQueue.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace Ostrel {

/// A machine without sound: its queue works, taps are unsupported.
class SilentAudioSystem final : public AudioSystem, private AudioTap {
public:
    explicit SilentAudioSystem(std::unique_ptr<SerialQueue> queue)
        : queue_(std::move(queue)) { }

    SerialQueue& queue() override { return *queue_; }
    AudioTap& tap() override { return *this; }

private:
    bool isSupported() const override { return false; }
    bool hasCaptureAccess() const override { return true; }
    bool requestCaptureAccess() override { return true; }
    void bringApplicationForward() override { }
    std::optional<int> runningApplication(std::string_view) override { return std::nullopt; }
    int currentProcess() const override { return 0; }
    AudioObjectID processObject(int) override { return 0; }
    AudioObjectResult createProcessTap(const AudioTapDescription&) override { return {}; }
    void destroyProcessTap(AudioObjectID) override { }
    AudioObjectResult createAggregateDevice(const AudioAggregateDescription&) override { return {}; }
    void destroyAggregateDevice(AudioObjectID) override { }
    AudioObjectID defaultSystemOutputDevice() override { return 0; }
    AudioObjectID defaultOutputDevice() override { return 0; }
    std::optional<std::string> deviceUID(AudioObjectID) override { return std::nullopt; }
    std::optional<AudioStreamFormat> tapFormat(AudioObjectID) override { return std::nullopt; }
    std::optional<AudioStreamFormat> streamFormat(AudioObjectID, AudioScope) override { return std::nullopt; }
    double nominalSampleRate(AudioObjectID) override { return 0; }
    AudioObjectResult createIOProc(AudioObjectID, AudioIOBlock, std::function<void()>) override { return {}; }
    void destroyIOProc(AudioObjectID, AudioObjectID) override { }
    AudioStatus startDevice(AudioObjectID, AudioObjectID) override { return 0; }
    void stopDevice(AudioObjectID, AudioObjectID) override { }

    std::unique_ptr<SerialQueue> queue_;
};

} // namespace Ostrel
