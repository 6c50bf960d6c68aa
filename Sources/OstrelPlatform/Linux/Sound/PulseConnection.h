#pragma once

#include "OstrelPlatform/AudioTap.h"

#include <pulse/channelmap.h>
#include <pulse/sample.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

struct pa_context;
struct pa_operation;

namespace Ostrel {

class PulseSleeper;
class ThreadSerialQueue;

/// An output of the sound server and the source that hears what it plays.
struct PulseSink {
    std::uint32_t index = 0;
    std::string name;
    std::string monitorName;
    pa_sample_spec sampleSpec{};
    pa_channel_map channelMap{};
};

/// What one client plays.
struct PulsePlayback {
    std::uint32_t index = 0;
    std::uint32_t sinkIndex = 0;
    /// 0 when the client does not say.
    int processID = 0;
    bool isPaused = false;
    /// What the client says of itself: names and program file.
    std::vector<std::string> names;
};

/// The connection to the sound server, made when asked for and made again when it broke. Every question waits for its
/// answer, but never longer than `AnswerSeconds`; then the connection counts as broken. All on the queue; others may
/// `sync` with it meanwhile.
class PulseConnection {
public:
    static constexpr double AnswerSeconds = 1;

    /// Both outlive the connection.
    PulseConnection(PulseSleeper& sleeper, ThreadSerialQueue& queue);
    /// Also from another thread once the queue has ended.
    ~PulseConnection();

    /// 0, or why there is no connection. Starts no server.
    AudioStatus open();
    /// Null while there is no connection.
    pa_context* context() { return context_; }
    PulseSleeper& sleeper() { return sleeper_; }
    /// Why the last question failed.
    AudioStatus error() const;

    std::optional<PulseSink> defaultSink();
    std::optional<PulseSink> sink(std::uint32_t index);
    std::vector<PulsePlayback> playbacks();

    /// Lets the server talk until `done` says true; false, and the connection is closed, when that takes too long.
    bool waitUntil(const std::function<bool()>& done);

private:
    void close();
    bool finish(pa_operation* operation);

    PulseSleeper& sleeper_;
    ThreadSerialQueue& queue_;
    pa_context* context_ = nullptr;
};

} // namespace Ostrel
