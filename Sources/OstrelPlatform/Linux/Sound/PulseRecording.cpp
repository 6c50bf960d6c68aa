#include "OstrelPlatform/Linux/Sound/PulseRecording.h"

#include "OstrelPlatform/Linux/Sound/PulseConnection.h"
#include "OstrelPlatform/Linux/Sound/PulseSleeper.h"
#include "OstrelPlatform/ThreadSerialQueue.h"

#include <pulse/pulseaudio.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>

namespace Ostrel {

namespace {

/// A hop of the default transform: more often there is little new to see.
constexpr double FragmentSeconds = 0.0232;
constexpr auto Pace = std::chrono::microseconds(static_cast<int>(FragmentSeconds * 1e6));
/// A client that pauses sends nothing at all, where a device would go on with silence, and bars would stand still. So
/// silence is made up once a pause is longer than a late piece, and long enough for slow bars to fall.
constexpr double PauseSeconds = 0.15;
constexpr double MadeUpSilenceSeconds = 10;
/// What the server keeps for a reader that has fallen behind; older sound is of no use to bars.
constexpr std::uint32_t KeptFragments = 16;

template <typename Sample>
void separateChannels(const std::byte* interleaved, std::byte* planar, std::size_t frames, std::size_t channels) {
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const std::byte* from = interleaved + channel * sizeof(Sample);
        for (std::size_t frame = 0; frame < frames; ++frame) {
            std::memcpy(planar, from, sizeof(Sample));
            planar += sizeof(Sample);
            from += channels * sizeof(Sample);
        }
    }
}

} // namespace

AudioStreamFormat PulseSource::format() const {
    AudioStreamFormat format;
    format.sampleRateHz = sampleSpec.rate;
    format.isFloat = sampleSpec.format == PA_SAMPLE_FLOAT32NE;
    format.bitsPerChannel = sampleSpec.format == PA_SAMPLE_S16NE ? 16 : 32;
    format.channels = sampleSpec.channels;
    return format;
}

pa_sample_spec PulseSource::understood(pa_sample_spec stream) {
    if (stream.format != PA_SAMPLE_S16NE && stream.format != PA_SAMPLE_S32NE)
        stream.format = PA_SAMPLE_FLOAT32NE;
    return stream;
}

PulseRecording::PulseRecording(
    ThreadSerialQueue& queue, PulseSource source, AudioIOBlock block, std::function<void()> onLost)
    : queue_(queue)
    , source_(std::move(source))
    , block_(std::move(block))
    , onLost_(std::make_shared<const std::function<void()>>(std::move(onLost))) { }

PulseRecording::~PulseRecording() {
    stop();
}

AudioStatus PulseRecording::start(PulseConnection& connection) {
    stop();
    context_ = connection.context();
    sleeper_ = &connection.sleeper();
    if (!context_)
        return PA_ERR_CONNECTIONTERMINATED;
    stream_ = pa_stream_new(context_, "Visualizer", &source_.sampleSpec, &source_.channelMap);
    const auto isSettled = [this] { return pa_stream_get_state(stream_) != PA_STREAM_CREATING; };
    if (!stream_ || !connectStream() || !connection.waitUntil(isSettled)
        || pa_stream_get_state(stream_) != PA_STREAM_READY) {
        const auto status = connection.error();
        stop();
        return status;
    }
    pa_stream_set_state_callback(stream_, onState, this);
    sleeper_->setPace(Pace);
    return PA_OK;
}

bool PulseRecording::connectStream() {
    if (source_.playbackIndex && pa_stream_set_monitor_stream(stream_, *source_.playbackIndex) < 0)
        return false;
    pa_buffer_attr attributes{};
    attributes.fragsize = static_cast<std::uint32_t>(fragmentBytes());
    attributes.maxlength = attributes.fragsize * KeptFragments;
    pa_stream_set_read_callback(stream_, onRead, this);
    // An output that nobody plays on may sleep although we listen, and a stream is never moved to a microphone.
    const auto flags = static_cast<pa_stream_flags_t>(
        PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE | PA_STREAM_DONT_INHIBIT_AUTO_SUSPEND);
    return pa_stream_connect_record(stream_, source_.monitorName.c_str(), &attributes, flags) >= 0;
}

void PulseRecording::stop() {
    if (silenceTimer_)
        sleeper_->api().time_free(std::exchange(silenceTimer_, nullptr));
    if (!stream_)
        return;
    sleeper_->setPace({});
    pa_stream_set_read_callback(stream_, nullptr, nullptr);
    pa_stream_set_state_callback(stream_, nullptr, nullptr);
    pa_stream_disconnect(stream_);
    pa_stream_unref(std::exchange(stream_, nullptr));
}

void PulseRecording::onState(pa_stream* stream, void* self) {
    if (PA_STREAM_IS_GOOD(pa_stream_get_state(stream)))
        return;
    pa_stream_set_state_callback(stream, nullptr, nullptr);
    const auto& recording = *static_cast<PulseRecording*>(self);
    recording.queue_.post([weak = std::weak_ptr(recording.onLost_)] {
        if (const auto onLost = weak.lock())
            (*onLost)();
    });
}

void PulseRecording::onRead(pa_stream*, std::size_t, void* self) {
    static_cast<PulseRecording*>(self)->readAll();
}

void PulseRecording::readAll() {
    const void* data = nullptr;
    std::size_t bytes = 0;
    bool hasSound = false;
    while (pa_stream_peek(stream_, &data, &bytes) >= 0 && bytes > 0) {
        // Without data it is a hole in the stream.
        if (data)
            deliver(data, bytes);
        hasSound = hasSound || data;
        pa_stream_drop(stream_);
    }
    if (!hasSound)
        return;
    silenceSeconds_ = 0;
    expectSoundWithin(PauseSeconds);
}

void PulseRecording::expectSoundWithin(double seconds) {
    const auto due = pa_rtclock_now() + static_cast<pa_usec_t>(seconds * 1e6);
    if (silenceTimer_)
        pa_context_rttime_restart(context_, silenceTimer_, due);
    else
        silenceTimer_ = pa_context_rttime_new(context_, due, onSilence, this);
}

void PulseRecording::onSilence(pa_mainloop_api*, pa_time_event*, const timeval*, void* self) {
    static_cast<PulseRecording*>(self)->makeUpSilence();
}

void PulseRecording::makeUpSilence() {
    deliver(nullptr, fragmentBytes());
    silenceSeconds_ += FragmentSeconds;
    if (silenceSeconds_ < MadeUpSilenceSeconds)
        expectSoundWithin(FragmentSeconds);
}

void PulseRecording::deliver(const void* data, std::size_t bytes) {
    const std::size_t channels = source_.sampleSpec.channels;
    const std::size_t sampleBytes = pa_sample_size(&source_.sampleSpec);
    const std::size_t frames = bytes / (channels * sampleBytes);
    const auto* interleaved = static_cast<const std::byte*>(data);
    planar_.resize(frames * channels * sampleBytes);
    if (!data)
        std::ranges::fill(planar_, std::byte{0});
    else if (sampleBytes == sizeof(std::int16_t))
        separateChannels<std::int16_t>(interleaved, planar_.data(), frames, channels);
    else
        separateChannels<std::int32_t>(interleaved, planar_.data(), frames, channels);
    channels_.clear();
    for (std::size_t channel = 0; channel < channels; ++channel)
        channels_.push_back(std::span(planar_).subspan(channel * frames * sampleBytes, frames * sampleBytes));
    queue_.sync([this] { block_(channels_, {}); });
}

std::size_t PulseRecording::fragmentBytes() const {
    const auto frames = static_cast<std::size_t>(source_.sampleSpec.rate * FragmentSeconds);
    return std::max<std::size_t>(1, frames) * pa_frame_size(&source_.sampleSpec);
}

} // namespace Ostrel
