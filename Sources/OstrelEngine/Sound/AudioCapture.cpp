#include "OstrelEngine/Sound/AudioCapture.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelEngine/Sound/AudioMixer.h"
#include "OstrelEngine/Sound/SpectrumAnalyzer.h"
#include "OstrelPlatform/Clock.h"
#include "OstrelPlatform/MainQueue.h"
#include "OstrelPlatform/SerialQueue.h"

#include <random>

namespace Ostrel {

namespace {

constexpr double RetryDelaySeconds = 2;
constexpr double WatchdogDelaySeconds = 2;
constexpr std::string_view SpotifyBundleIdentifier = "com.spotify.client";

std::string number(std::int64_t value) {
    return formatFixed(static_cast<double>(value), 0);
}

std::string randomUUID() {
    constexpr std::string_view Digits = "0123456789ABCDEF";
    constexpr std::string_view Pattern = "xxxxxxxx-xxxx-4xxx-yxxx-xxxxxxxxxxxx";
    std::random_device device;
    std::string uuid(Pattern);
    for (char& c : uuid) {
        if (c == 'x')
            c = Digits[device() % 16];
        else if (c == 'y')
            c = Digits[8 + device() % 4];
    }
    return uuid;
}

} // namespace

AudioCapture::AudioCapture(Environment environment)
    : environment_(std::move(environment)) { }

void AudioCapture::log(std::string_view message) const {
    environment_.log("[AudioLevel] " + std::string(message));
}

void AudioCapture::ensureStarted() {
    bool starts = false;
    environment_.system.queue().sync([&] {
        if (startAttempted_ || environment_.clock.uptimeSeconds() < nextTapStartupRetrySeconds_)
            return;
        startAttempted_ = true;
        starts = true;
    });
    if (starts)
        startProcessTapCapture(true);
}

void AudioCapture::startProcessTapCapture(bool preferSpotifyProcess) {
    environment_.system.queue().post([weak = weak_from_this(), preferSpotifyProcess] {
        if (const auto self = weak.lock())
            self->startProcessTapCaptureLocked(preferSpotifyProcess);
    });
}

void AudioCapture::startProcessTapCaptureLocked(bool preferSpotifyProcess) {
    log("Starting process tap capture.");
    if (preferSpotifyProcess)
        hasRetriedGlobalTapAfterSpotifySilence_ = false;
    if (!tap().isSupported()) {
        log("Process tap unsupported on this macOS; audio capture disabled.");
        return;
    }
    // Making the tap is itself what asks the user, so a missing permission stops nothing.
    if (!ensureScreenCaptureAccessLocked())
        log("Screen/system-audio access pending or denied; continuing startup to surface system audio permission "
            "prompt.");

    Resources made;
    if (!createResourcesLocked(chooseTapLocked(preferSpotifyProcess), made))
        return;
    running_ = made;
    didReceiveProcessTapAudio_ = false;
    scheduleProcessTapNoAudioFallbackLocked(WatchdogDelaySeconds);
    log("Process tap capture started.");
}

AudioTapDescription AudioCapture::chooseTapLocked(bool preferSpotifyProcess) {
    AudioTapDescription description;
    description.name = "Ostrel System Audio Tap";
    description.uuid = randomUUID();
    const auto player = preferSpotifyProcess ? tap().runningApplication(SpotifyBundleIdentifier) : std::nullopt;
    const AudioObjectID playerObject = player ? tap().processObject(*player) : 0;
    isUsingSpotifyProcessTap_ = playerObject != 0;
    if (isUsingSpotifyProcessTap_) {
        description.scope = AudioTapDescription::Scope::MixdownOf;
        description.processes = {playerObject};
        log("Using Spotify process-targeted tap.");
        return description;
    }
    description.scope = AudioTapDescription::Scope::GlobalExcluding;
    if (const auto own = tap().processObject(tap().currentProcess()))
        description.processes = {own};
    log("Using global output tap.");
    return description;
}

bool AudioCapture::createResourcesLocked(const AudioTapDescription& description, Resources& made) {
    const auto processTap = tap().createProcessTap(description);
    if (!processTap.succeeded()) {
        failStartLocked("Process tap creation", processTap.status, made);
        return false;
    }
    made.tap = processTap.id;
    log("Process tap created (id=" + number(made.tap) + ").");

    AudioAggregateDescription aggregateDescription;
    aggregateDescription.name = "Ostrel Audio Tap Aggregate";
    aggregateDescription.uid = "dev.ostrel.aggregate." + description.uuid;
    aggregateDescription.tapUUID = description.uuid;
    aggregateDescription.outputDeviceUID = outputDeviceUIDLocked();
    const auto aggregate = tap().createAggregateDevice(aggregateDescription);
    if (!aggregate.succeeded()) {
        failStartLocked("Aggregate device creation", aggregate.status, made);
        return false;
    }
    made.aggregate = aggregate.id;
    log("Aggregate device created (id=" + number(made.aggregate) + ").");
    adoptFormatLocked(made);

    const auto ioProc = createIOProcLocked(made.aggregate);
    if (!ioProc.succeeded()) {
        failStartLocked("Process tap IOProc creation", ioProc.status, made);
        return false;
    }
    made.ioProc = ioProc.id;
    if (const auto status = tap().startDevice(made.aggregate, made.ioProc)) {
        failStartLocked("Process tap start", status, made);
        return false;
    }
    return true;
}

std::optional<std::string> AudioCapture::outputDeviceUIDLocked() {
    for (const auto device : {&AudioTap::defaultSystemOutputDevice, &AudioTap::defaultOutputDevice}) {
        const AudioObjectID id = (tap().*device)();
        if (auto uid = id != 0 ? tap().deviceUID(id) : std::nullopt)
            return uid;
    }
    return std::nullopt;
}

void AudioCapture::adoptFormatLocked(const Resources& made) {
    processTapFormat_ = tap().tapFormat(made.tap);
    if (!processTapFormat_)
        processTapFormat_ = streamFormatLocked(made.aggregate);
    if (processTapFormat_ && processTapFormat_->sampleRateHz > 0)
        environment_.analyzer.setSampleRate(processTapFormat_->sampleRateHz);
    else
        environment_.analyzer.setSampleRate(tap().nominalSampleRate(made.aggregate));
}

std::optional<AudioStreamFormat> AudioCapture::streamFormatLocked(AudioObjectID device) {
    for (const auto scope : {AudioScope::Input, AudioScope::Output, AudioScope::Global}) {
        if (auto format = tap().streamFormat(device, scope))
            return format;
    }
    return std::nullopt;
}

AudioObjectResult AudioCapture::createIOProcLocked(AudioObjectID aggregate) {
    const auto weak = weak_from_this();
    const auto block = [weak](AudioBufferList input, AudioBufferList output) {
        const auto self = weak.lock();
        if (!self)
            return;
        if (AudioMixer::hasSampleData(input))
            self->consumeProcessTapInput(input);
        else if (AudioMixer::hasSampleData(output))
            self->consumeProcessTapInput(output);
    };
    const auto onLost = [weak] {
        if (const auto self = weak.lock())
            self->processTapLostLocked();
    };
    return tap().createIOProc(aggregate, block, onLost);
}

void AudioCapture::failStartLocked(std::string_view what, AudioStatus status, const Resources& made) {
    log(std::string(what) + " failed (" + number(status) + "); retrying later.");
    releaseLocked(made);
    markProcessTapStartupFailedLocked();
}

/// In reverse order of creation.
void AudioCapture::releaseLocked(const Resources& resources) {
    if (resources.ioProc != 0 && resources.aggregate != 0)
        tap().destroyIOProc(resources.aggregate, resources.ioProc);
    if (resources.aggregate != 0)
        tap().destroyAggregateDevice(resources.aggregate);
    if (resources.tap != 0)
        tap().destroyProcessTap(resources.tap);
}

void AudioCapture::markProcessTapStartupFailedLocked() {
    startAttempted_ = false;
    nextTapStartupRetrySeconds_ = environment_.clock.uptimeSeconds() + RetryDelaySeconds;
}

void AudioCapture::stopProcessTapCaptureLocked() {
    cancelWatchdogLocked();
    if (running_.ioProc != 0 && running_.aggregate != 0)
        tap().stopDevice(running_.aggregate, running_.ioProc);
    releaseLocked(running_);
    running_ = {};
    processTapFormat_.reset();
    didReceiveProcessTapAudio_ = false;
    didLogFirstProcessTapBuffer_ = false;
    isUsingSpotifyProcessTap_ = false;
    hasRetriedGlobalTapAfterSpotifySilence_ = false;
}

bool AudioCapture::ensureScreenCaptureAccessLocked() {
    if (environment_.mainQueue.isMainThread())
        return requestScreenCaptureAccess();
    if (tap().hasCaptureAccess())
        return true;
    environment_.mainQueue.post([weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->requestScreenCaptureAccess();
    });
    return false;
}

bool AudioCapture::requestScreenCaptureAccess() {
    if (tap().hasCaptureAccess())
        return true;
    log("Requesting Screen Recording access for process tap capture.");
    tap().bringApplicationForward();
    return tap().requestCaptureAccess();
}

void AudioCapture::scheduleProcessTapNoAudioFallbackLocked(double afterSeconds) {
    cancelWatchdogLocked();
    environment_.system.queue().postAfter(afterSeconds, [weak = weak_from_this(), number = watchdogNumber_] {
        if (const auto self = weak.lock())
            self->watchdogLocked(number);
    });
}

void AudioCapture::watchdogLocked(std::uint64_t number) {
    if (number != watchdogNumber_ || running_.ioProc == 0 || didReceiveProcessTapAudio_)
        return;
    if (isUsingSpotifyProcessTap_ && !hasRetriedGlobalTapAfterSpotifySilence_) {
        log("Spotify process tap produced no audio; retrying with global output tap.");
        // The stop clears this again, so that each fresh cycle may try the player's tap first.
        hasRetriedGlobalTapAfterSpotifySilence_ = true;
        stopProcessTapCaptureLocked();
        startProcessTapCaptureLocked(false);
        return;
    }
    log("Process tap produced no audio; will retry later.");
    stopProcessTapCaptureLocked();
    markProcessTapStartupFailedLocked();
}

void AudioCapture::processTapLostLocked() {
    if (running_.ioProc == 0)
        return;
    log("Process tap lost; will retry later.");
    stopProcessTapCaptureLocked();
    markProcessTapStartupFailedLocked();
}

void AudioCapture::consumeProcessTapInput(AudioBufferList buffers) {
    if (running_.aggregate == 0)
        return;
    // Silence counts too: a tap without permission, or of nothing that plays, delivers no buffers at all.
    if (!didReceiveProcessTapAudio_) {
        didReceiveProcessTapAudio_ = true;
        cancelWatchdogLocked();
    }
    if (!processTapFormat_)
        processTapFormat_ = streamFormatLocked(running_.aggregate);
    if (!processTapFormat_ || !AudioMixer::mixToMono(*processTapFormat_, buffers, mono_))
        return;
    const auto& format = *processTapFormat_;
    const double rate = format.sampleRateHz > 0 ? format.sampleRateHz : environment_.analyzer.latestSampleRate();
    if (!didLogFirstProcessTapBuffer_) {
        didLogFirstProcessTapBuffer_ = true;
        log("Received process-tap audio buffer (frames=" + number(static_cast<std::int64_t>(mono_.size()))
            + ", channels=" + number(format.channels) + ", sampleRate=" + formatFixed(rate, 1) + ").");
    }
    environment_.analyzer.ingestSamples(mono_, rate);
}

} // namespace Ostrel
