#pragma once

#include "OstrelPlatform/AudioTap.h"

#include <pulse/channelmap.h>
#include <pulse/sample.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct pa_context;
struct pa_mainloop_api;
struct pa_stream;
struct pa_time_event;
struct timeval;

namespace Ostrel {

class PulseConnection;
class PulseSleeper;
class ThreadSerialQueue;

/// What to hear, and how it is to arrive.
struct PulseSource {
    /// The source that hears a whole output.
    std::string monitorName;
    /// Of all that plays there only this.
    std::optional<std::uint32_t> playbackIndex;
    pa_sample_spec sampleSpec{};
    pa_channel_map channelMap{};

    AudioStreamFormat format() const;
    /// The server's own format where the port has a counterpart, else floats, to which the server then converts.
    static pa_sample_spec understood(pa_sample_spec stream);
};

/// One stream of sound from the server, handed on piece by piece. All on the queue.
class PulseRecording {
public:
    /// `onLost` is posted, unless the recording has ended by then.
    PulseRecording(ThreadSerialQueue& queue, PulseSource source, AudioIOBlock block, std::function<void()> onLost);
    ~PulseRecording();
    PulseRecording(const PulseRecording&) = delete;
    PulseRecording& operator=(const PulseRecording&) = delete;

    /// 0, or why nothing will come.
    AudioStatus start(PulseConnection& connection);
    void stop();

private:
    static void onState(pa_stream*, void* self);
    static void onRead(pa_stream*, std::size_t, void* self);
    static void onSilence(pa_mainloop_api*, pa_time_event*, const timeval*, void* self);

    bool connectStream();
    void readAll();
    void expectSoundWithin(double seconds);
    void makeUpSilence();
    /// Null data is silence.
    void deliver(const void* data, std::size_t bytes);
    std::size_t fragmentBytes() const;

    ThreadSerialQueue& queue_;
    PulseSource source_;
    AudioIOBlock block_;
    std::shared_ptr<const std::function<void()>> onLost_;
    pa_context* context_ = nullptr;
    PulseSleeper* sleeper_ = nullptr;
    pa_stream* stream_ = nullptr;
    pa_time_event* silenceTimer_ = nullptr;
    /// How much silence has been made up since the last sound.
    double silenceSeconds_ = 0;
    std::vector<std::byte> planar_;
    std::vector<std::span<const std::byte>> channels_;
};

} // namespace Ostrel
