#include "OstrelPlatform/Linux/Sound/PulseSoundControl.h"

#include "OstrelPlatform/MainQueue.h"

#include <pulse/pulseaudio.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace Ostrel {

namespace {

double monotonicSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void drop(pa_operation* operation) {
    if (operation)
        pa_operation_unref(operation);
}

} // namespace

/// One connection. What begins with "on" runs on the library's thread, which holds the lock of its loop.
class PulseSoundControl::Session : public std::enable_shared_from_this<Session> {
public:
    explicit Session(MainQueue& mainQueue)
        : mainQueue_(mainQueue) { }
    ~Session() {
        if (loop_)
            pa_threaded_mainloop_stop(loop_);
        if (context_) {
            pa_context_disconnect(context_);
            pa_context_unref(context_);
        }
        if (loop_)
            pa_threaded_mainloop_free(loop_);
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    bool start() {
        loop_ = pa_threaded_mainloop_new();
        context_ = loop_ ? pa_context_new(pa_threaded_mainloop_get_api(loop_), "Ostrel") : nullptr;
        if (!context_)
            return false;
        weak_ = weak_from_this();
        pa_context_set_state_callback(
            context_, [](pa_context*, void* self) { of(self).onState(); }, this);
        pa_context_set_subscribe_callback(
            context_, [](pa_context*, pa_subscription_event_type_t, std::uint32_t, void* self) { of(self).ask(); },
            this);
        return pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) >= 0
            && pa_threaded_mainloop_start(loop_) >= 0;
    }

    // Main thread.
    State state;
    bool hasFailed = false;

    /// Runs with the library's thread kept out.
    template <typename Change> void change(Change body) {
        pa_threaded_mainloop_lock(loop_);
        if (pa_context_get_state(context_) == PA_CONTEXT_READY)
            body();
        pa_threaded_mainloop_unlock(loop_);
    }
    void setVolume(double percent) {
        change([&] {
            const auto* sink = current();
            if (!sink)
                return;
            pa_cvolume volume;
            pa_cvolume_set(&volume, sink->channels,
                static_cast<pa_volume_t>(std::lround(std::clamp(percent, 0.0, 100.0) / 100 * PA_VOLUME_NORM)));
            drop(pa_context_set_sink_volume_by_name(context_, sink->name.c_str(), &volume, nullptr, nullptr));
            drop(pa_context_set_sink_mute_by_name(context_, sink->name.c_str(), 0, nullptr, nullptr));
        });
    }
    void toggleMute() {
        change([&] {
            if (const auto* sink = current())
                drop(pa_context_set_sink_mute_by_name(
                    context_, sink->name.c_str(), sink->isMuted ? 0 : 1, nullptr, nullptr));
        });
    }
    /// A place in the list from the present one, wrapping, or an absolute one.
    void choose(int number, bool isRelative) {
        change([&] {
            const auto count = static_cast<int>(sinks_.size());
            if (count == 0)
                return;
            const auto* present = current();
            const int place = present ? static_cast<int>(present - sinks_.data()) : 0;
            const int wanted = isRelative ? ((place + number) % count + count) % count : number - 1;
            if (wanted < 0 || wanted >= count)
                return;
            target_ = sinks_[static_cast<std::size_t>(wanted)].name;
            drop(pa_context_set_default_sink(context_, target_.c_str(), nullptr, nullptr));
            drop(pa_context_get_sink_input_info_list(
                context_,
                [](pa_context*, const pa_sink_input_info* input, int, void* self) {
                    auto& session = of(self);
                    if (input)
                        drop(pa_context_move_sink_input_by_name(
                            session.context_, input->index, session.target_.c_str(), nullptr, nullptr));
                },
                this));
        });
    }

private:
    struct Sink {
        std::string name;
        std::string description;
        double volume = 0;
        bool isMuted = false;
        std::uint8_t channels = 2;
    };

    static Session& of(void* self) { return *static_cast<Session*>(self); }

    const Sink* current() const {
        const auto sink = std::ranges::find(sinks_, defaultName_, &Sink::name);
        return sink == sinks_.end() ? nullptr : &*sink;
    }

    void onState() {
        const auto now = pa_context_get_state(context_);
        if (now == PA_CONTEXT_READY) {
            drop(pa_context_subscribe(context_,
                static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SERVER), nullptr,
                nullptr));
            ask();
        } else if (!PA_CONTEXT_IS_GOOD(now)) {
            publish({}, true);
        }
    }

    void ask() {
        drop(pa_context_get_server_info(
            context_,
            [](pa_context*, const pa_server_info* server, void* self) {
                of(self).defaultName_ = server && server->default_sink_name ? server->default_sink_name : "";
                of(self).askSinks();
            },
            this));
    }

    void askSinks() {
        incoming_.clear();
        drop(pa_context_get_sink_info_list(
            context_,
            [](pa_context*, const pa_sink_info* sink, int isLast, void* self) { of(self).onSink(sink, isLast); },
            this));
    }

    void onSink(const pa_sink_info* sink, int isLast) {
        if (sink) {
            incoming_.push_back({sink->name, sink->description ? sink->description : "",
                static_cast<double>(pa_cvolume_avg(&sink->volume)) / PA_VOLUME_NORM * 100, sink->mute != 0,
                sink->volume.channels});
        }
        if (isLast == 0)
            return;
        sinks_ = std::exchange(incoming_, {});
        State known;
        if (const auto* shown = current())
            known = {true, shown->description, std::round(std::min(shown->volume, 100.0)), shown->isMuted};
        publish(known, false);
    }

    void publish(const State& known, bool failed) {
        mainQueue_.post([weak = weak_, known, failed] {
            if (const auto session = weak.lock()) {
                session->state = known;
                session->hasFailed = failed;
            }
        });
    }

    MainQueue& mainQueue_;
    std::weak_ptr<Session> weak_;
    pa_threaded_mainloop* loop_ = nullptr;
    pa_context* context_ = nullptr;
    // Guarded by the lock of the loop.
    std::string defaultName_;
    std::string target_;
    std::vector<Sink> sinks_;
    std::vector<Sink> incoming_;
};

PulseSoundControl::PulseSoundControl(MainQueue& mainQueue)
    : mainQueue_(mainQueue) { }

PulseSoundControl::~PulseSoundControl() = default;

void PulseSoundControl::begin() {
    constexpr double Rest = 5;
    if (session_ && !session_->hasFailed)
        return;
    const double now = monotonicSeconds();
    if (now < retryAt_)
        return;
    retryAt_ = now + Rest;
    session_ = std::make_shared<Session>(mainQueue_);
    if (!session_->start())
        session_->hasFailed = true;
}

const SoundControl::State& PulseSoundControl::state() {
    static const State unknown;
    begin();
    return session_ ? session_->state : unknown;
}

void PulseSoundControl::setVolume(double volume) {
    begin();
    if (session_->hasFailed)
        return;
    session_->setVolume(volume);
    // Several changes in a row add up before the server has told of the first.
    session_->state.volume = std::clamp(volume, 0.0, 100.0);
}

void PulseSoundControl::toggleMute() {
    begin();
    if (!session_->hasFailed)
        session_->toggleMute();
}

void PulseSoundControl::chooseNext(int steps) {
    begin();
    if (!session_->hasFailed)
        session_->choose(steps, true);
}

void PulseSoundControl::choose(int number) {
    begin();
    if (!session_->hasFailed)
        session_->choose(number, false);
}

} // namespace Ostrel
