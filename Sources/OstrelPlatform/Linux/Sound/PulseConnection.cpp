#include "OstrelPlatform/Linux/Sound/PulseConnection.h"

#include "OstrelPlatform/Linux/Sound/PulseSleeper.h"

#include <pulse/pulseaudio.h>

#include <cstdlib>

namespace Ostrel {

namespace {

std::string text(const char* value) {
    return value ? value : "";
}

PulseSink sinkFrom(const pa_sink_info& info) {
    return {info.index, text(info.name), text(info.monitor_source_name), info.sample_spec, info.channel_map};
}

PulsePlayback playbackFrom(const pa_sink_input_info& info) {
    PulsePlayback playback;
    playback.index = info.index;
    playback.sinkIndex = info.sink;
    playback.processID = std::atoi(text(pa_proplist_gets(info.proplist, PA_PROP_APPLICATION_PROCESS_ID)).c_str());
    playback.isPaused = info.corked != 0;
    for (const char* key : {PA_PROP_APPLICATION_ID, PA_PROP_APPLICATION_NAME, PA_PROP_APPLICATION_PROCESS_BINARY}) {
        if (const char* value = pa_proplist_gets(info.proplist, key))
            playback.names.emplace_back(value);
    }
    return playback;
}

void takeSink(pa_context*, const pa_sink_info* info, int, void* result) {
    if (info)
        *static_cast<std::optional<PulseSink>*>(result) = sinkFrom(*info);
}

} // namespace

PulseConnection::PulseConnection(PulseSleeper& sleeper, ThreadSerialQueue& queue)
    : sleeper_(sleeper)
    , queue_(queue) { }

PulseConnection::~PulseConnection() {
    close();
}

AudioStatus PulseConnection::open() {
    if (context_ && pa_context_get_state(context_) == PA_CONTEXT_READY)
        return PA_OK;
    close();
    context_ = pa_context_new(&sleeper_.api(), "Ostrel");
    if (!context_)
        return PA_ERR_INTERNAL;
    if (pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) {
        const auto status = pa_context_errno(context_);
        close();
        return status;
    }
    const auto isSettled = [this] {
        const auto state = pa_context_get_state(context_);
        return state == PA_CONTEXT_READY || !PA_CONTEXT_IS_GOOD(state);
    };
    if (!waitUntil(isSettled))
        return PA_ERR_TIMEOUT;
    return pa_context_get_state(context_) == PA_CONTEXT_READY ? static_cast<AudioStatus>(PA_OK) : error();
}

AudioStatus PulseConnection::error() const {
    const int status = context_ ? pa_context_errno(context_) : PA_ERR_TIMEOUT;
    return status != PA_OK ? status : PA_ERR_UNKNOWN;
}

void PulseConnection::close() {
    if (!context_)
        return;
    pa_context_disconnect(context_);
    pa_context_unref(context_);
    context_ = nullptr;
}

bool PulseConnection::waitUntil(const std::function<bool()>& done) {
    const auto deadline = QueueSleeper::Clock::now()
        + std::chrono::duration_cast<QueueSleeper::Clock::duration>(std::chrono::duration<double>(AnswerSeconds));
    while (!done()) {
        if (QueueSleeper::Clock::now() >= deadline) {
            close();
            return false;
        }
        queue_.whileReleased([&] { sleeper_.sleepUntilAnswer(deadline); });
    }
    return true;
}

bool PulseConnection::finish(pa_operation* operation) {
    if (!operation)
        return false;
    const bool inTime = waitUntil([&] { return pa_operation_get_state(operation) != PA_OPERATION_RUNNING; });
    if (!inTime)
        pa_operation_cancel(operation);
    const bool isDone = inTime && pa_operation_get_state(operation) == PA_OPERATION_DONE;
    pa_operation_unref(operation);
    return isDone;
}

std::optional<PulseSink> PulseConnection::defaultSink() {
    std::string name;
    const auto takeName = [](pa_context*, const pa_server_info* info, void* result) {
        *static_cast<std::string*>(result) = info ? text(info->default_sink_name) : "";
    };
    if (!context_ || !finish(pa_context_get_server_info(context_, takeName, &name)) || name.empty())
        return std::nullopt;
    std::optional<PulseSink> sink;
    if (!finish(pa_context_get_sink_info_by_name(context_, name.c_str(), takeSink, &sink)))
        return std::nullopt;
    return sink;
}

std::optional<PulseSink> PulseConnection::sink(std::uint32_t index) {
    std::optional<PulseSink> sink;
    if (!context_ || !finish(pa_context_get_sink_info_by_index(context_, index, takeSink, &sink)))
        return std::nullopt;
    return sink;
}

std::vector<PulsePlayback> PulseConnection::playbacks() {
    std::vector<PulsePlayback> playbacks;
    const auto take = [](pa_context*, const pa_sink_input_info* info, int, void* result) {
        if (info)
            static_cast<std::vector<PulsePlayback>*>(result)->push_back(playbackFrom(*info));
    };
    if (!context_ || !finish(pa_context_get_sink_input_info_list(context_, take, &playbacks)))
        return {};
    return playbacks;
}

} // namespace Ostrel
