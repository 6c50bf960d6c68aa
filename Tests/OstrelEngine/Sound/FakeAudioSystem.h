#pragma once

#include "OstrelPlatform/AudioTap.h"
#include "OstrelPlatform/VirtualSerialQueue.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

/// A sound system of paper: notes every call as a line and answers what the test has set.
class FakeAudioSystem final : public AudioSystem, public AudioTap {
public:
    explicit FakeAudioSystem(const Clock& clock, AudioObjectID lastID = 10)
        : queue_(clock)
        , lastID_(lastID) { }

    VirtualSerialQueue& queue() override { return queue_; }
    AudioTap& tap() override { return *this; }

    bool isSupported() const override { return supported; }
    bool hasCaptureAccess() const override { return access; }
    bool requestCaptureAccess() override { return note("request access"), access; }
    void bringApplicationForward() override { note("bring forward"); }

    std::optional<int> runningApplication(std::string_view bundle) override {
        return bundle == "com.spotify.client" ? player : std::nullopt;
    }
    int currentProcess() const override { return 7; }
    AudioObjectID processObject(int pid) override {
        const auto found = processObjects.find(pid);
        return found == processObjects.end() ? 0 : found->second;
    }

    AudioObjectResult createProcessTap(const AudioTapDescription& description) override {
        tapDescription = description;
        return create("tap");
    }
    void destroyProcessTap(AudioObjectID id) override { note("destroy tap " + std::to_string(id)); }
    AudioObjectResult createAggregateDevice(const AudioAggregateDescription& description) override {
        aggregateDescription = description;
        return create("aggregate");
    }
    void destroyAggregateDevice(AudioObjectID id) override { note("destroy aggregate " + std::to_string(id)); }

    AudioObjectID defaultSystemOutputDevice() override { return systemOutput; }
    AudioObjectID defaultOutputDevice() override { return output; }
    std::optional<std::string> deviceUID(AudioObjectID device) override {
        const auto found = deviceUIDs.find(device);
        return found == deviceUIDs.end() ? std::nullopt : std::optional(found->second);
    }
    std::optional<AudioStreamFormat> tapFormat(AudioObjectID) override { return format; }
    std::optional<AudioStreamFormat> streamFormat(AudioObjectID device, AudioScope scope) override {
        note("format of " + std::to_string(device) + " in " + std::to_string(static_cast<int>(scope)));
        const auto found = scopeFormats.find(scope);
        return found == scopeFormats.end() ? std::nullopt : std::optional(found->second);
    }
    double nominalSampleRate(AudioObjectID) override { return nominalRate; }

    AudioObjectResult createIOProc(AudioObjectID, AudioIOBlock newBlock, std::function<void()> newLost) override {
        block = std::move(newBlock);
        onLost = std::move(newLost);
        return create("io proc");
    }
    void destroyIOProc(AudioObjectID device, AudioObjectID id) override {
        note("destroy io proc " + std::to_string(id) + " of " + std::to_string(device));
    }
    AudioStatus startDevice(AudioObjectID, AudioObjectID id) override {
        note("start " + std::to_string(id));
        return failing.contains("start") ? failing["start"].status : 0;
    }
    void stopDevice(AudioObjectID, AudioObjectID id) override { note("stop " + std::to_string(id)); }

    /// Delivers one cycle on the queue.
    void deliver(AudioBufferList recorded, AudioBufferList played = {}) {
        queue_.sync([&] { block(recorded, played); });
    }
    /// The calls since the last look, one a line.
    std::string takeCalls() {
        std::string text;
        for (const auto& call : calls)
            text += call + "\n";
        calls.clear();
        return text;
    }

    bool supported = true;
    bool access = true;
    std::optional<int> player;
    std::map<int, AudioObjectID> processObjects{{7, 70}};
    AudioObjectID systemOutput = 0;
    AudioObjectID output = 5;
    std::map<AudioObjectID, std::string> deviceUIDs{{5, "speakers"}, {6, "bell"}};
    std::optional<AudioStreamFormat> format = AudioStreamFormat{.sampleRateHz = 48000, .channels = 1};
    std::map<AudioScope, AudioStreamFormat> scopeFormats;
    double nominalRate = 0;
    /// What a call answers instead of success, by its name.
    std::map<std::string, AudioObjectResult> failing;
    AudioTapDescription tapDescription;
    AudioAggregateDescription aggregateDescription;
    AudioIOBlock block;
    std::function<void()> onLost;

private:
    void note(std::string call) { calls.push_back(std::move(call)); }
    AudioObjectResult create(const std::string& what) {
        if (failing.contains(what))
            return note("fail " + what), failing[what];
        note("create " + what + " " + std::to_string(++lastID_));
        return {0, lastID_};
    }

    VirtualSerialQueue queue_;
    std::vector<std::string> calls;
    AudioObjectID lastID_;
};

} // namespace Ostrel
