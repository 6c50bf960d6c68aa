#include "OstrelPlatform/Linux/Sound/PulseTap.h"

#include "OstrelCore/Text/Text.h"

#include <pulse/def.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

namespace {

/// Clients number from 0, and 0 is no object.
constexpr AudioObjectID objectFromIndex(std::uint32_t index) {
    return index + 1;
}

constexpr std::uint32_t indexFromObject(AudioObjectID object) {
    return object - 1;
}

bool equalsIgnoringASCIICase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, asciiUpper, asciiUpper);
}

/// An application calls itself by its plain name, a sandboxed one by the whole identifier.
bool isApplication(const PulsePlayback& playback, std::string_view bundleIdentifier) {
    const auto withoutSuffix = bundleIdentifier.substr(0, bundleIdentifier.rfind('.'));
    const auto name = withoutSuffix.substr(withoutSuffix.rfind('.') + 1);
    return std::ranges::any_of(playback.names, [&](const std::string& own) {
        return equalsIgnoringASCIICase(own, name) || equalsIgnoringASCIICase(own, bundleIdentifier);
    });
}

/// The first that fits, before it the first that fits and is playing.
template <typename Fits>
std::optional<PulsePlayback> choose(const std::vector<PulsePlayback>& playbacks, const Fits& fits) {
    const PulsePlayback* chosen = nullptr;
    for (const auto& playback : playbacks) {
        if (fits(playback) && (!chosen || (chosen->isPaused && !playback.isPaused)))
            chosen = &playback;
    }
    return chosen ? std::optional(*chosen) : std::nullopt;
}

} // namespace

PulseTap::PulseTap(PulseSleeper& sleeper, ThreadSerialQueue& queue)
    : queue_(queue)
    , connection_(sleeper, queue) { }

std::optional<int> PulseTap::runningApplication(std::string_view bundleIdentifier) {
    if (connection_.open() != 0)
        return std::nullopt;
    const auto playback = choose(connection_.playbacks(), [&](const PulsePlayback& candidate) {
        return candidate.processID > 0 && isApplication(candidate, bundleIdentifier);
    });
    return playback ? std::optional(playback->processID) : std::nullopt;
}

int PulseTap::currentProcess() const {
    return getpid();
}

AudioObjectID PulseTap::processObject(int processID) {
    const auto playback = choose(
        connection_.playbacks(), [&](const PulsePlayback& candidate) { return candidate.processID == processID; });
    return playback ? objectFromIndex(playback->index) : 0;
}

AudioObjectResult PulseTap::createProcessTap(const AudioTapDescription& description) {
    if (const auto status = connection_.open())
        return {status, 0};
    const auto source = sourceFor(description);
    if (!source || source->monitorName.empty())
        return {PA_ERR_NOENTITY, 0};
    taps_[++lastID_] = {description.uuid, *source};
    return {0, lastID_};
}

/// The server can't leave one client out of an output's monitor; we play nothing, so there is nothing to leave out.
std::optional<PulseSource> PulseTap::sourceFor(const AudioTapDescription& description) {
    PulseSource source;
    std::optional<PulseSink> sink;
    if (description.scope == AudioTapDescription::Scope::GlobalExcluding) {
        sink = connection_.defaultSink();
    } else if (!description.processes.empty()) {
        const auto wanted = indexFromObject(description.processes.front());
        const auto playback = choose(
            connection_.playbacks(), [&](const PulsePlayback& candidate) { return candidate.index == wanted; });
        source.playbackIndex = wanted;
        sink = playback ? connection_.sink(playback->sinkIndex) : std::nullopt;
    }
    if (!sink)
        return std::nullopt;
    source.monitorName = sink->monitorName;
    source.sampleSpec = PulseSource::understood(sink->sampleSpec);
    source.channelMap = sink->channelMap;
    return source;
}

void PulseTap::destroyProcessTap(AudioObjectID tap) {
    taps_.erase(tap);
}

AudioObjectResult PulseTap::createAggregateDevice(const AudioAggregateDescription& description) {
    const auto tap = std::ranges::find(
        taps_, description.tapUUID, [](const auto& entry) -> const std::string& { return entry.second.uuid; });
    if (tap == taps_.end())
        return {PA_ERR_NOENTITY, 0};
    devices_[++lastID_] = tap->first;
    return {0, lastID_};
}

void PulseTap::destroyAggregateDevice(AudioObjectID device) {
    devices_.erase(device);
}

AudioObjectID PulseTap::defaultOutputDevice() {
    const auto sink = connection_.defaultSink();
    return sink ? objectFromIndex(sink->index) : 0;
}

std::optional<std::string> PulseTap::deviceUID(AudioObjectID device) {
    const auto sink = connection_.sink(indexFromObject(device));
    return sink ? std::optional(sink->name) : std::nullopt;
}

std::optional<AudioStreamFormat> PulseTap::tapFormat(AudioObjectID tap) {
    const auto found = taps_.find(tap);
    return found == taps_.end() ? std::nullopt : std::optional(found->second.source.format());
}

std::optional<AudioStreamFormat> PulseTap::streamFormat(AudioObjectID device, AudioScope scope) {
    const auto* source = scope == AudioScope::Input ? sourceOf(device) : nullptr;
    return source ? std::optional(source->format()) : std::nullopt;
}

double PulseTap::nominalSampleRate(AudioObjectID device) {
    const auto* source = sourceOf(device);
    return source ? source->format().sampleRateHz : 0;
}

AudioObjectResult PulseTap::createIOProc(AudioObjectID device, AudioIOBlock block, std::function<void()> onLost) {
    const auto* source = sourceOf(device);
    if (!source)
        return {PA_ERR_NOENTITY, 0};
    recordings_[++lastID_] = std::make_unique<PulseRecording>(queue_, *source, std::move(block), std::move(onLost));
    return {0, lastID_};
}

void PulseTap::destroyIOProc(AudioObjectID, AudioObjectID ioProc) {
    recordings_.erase(ioProc);
}

AudioStatus PulseTap::startDevice(AudioObjectID, AudioObjectID ioProc) {
    const auto recording = recordings_.find(ioProc);
    return recording == recordings_.end() ? static_cast<AudioStatus>(PA_ERR_NOENTITY)
                                          : recording->second->start(connection_);
}

void PulseTap::stopDevice(AudioObjectID, AudioObjectID ioProc) {
    if (const auto recording = recordings_.find(ioProc); recording != recordings_.end())
        recording->second->stop();
}

const PulseSource* PulseTap::sourceOf(AudioObjectID device) const {
    const auto tap = devices_.find(device);
    if (tap == devices_.end())
        return nullptr;
    const auto found = taps_.find(tap->second);
    return found == taps_.end() ? nullptr : &found->second.source;
}

} // namespace Ostrel
