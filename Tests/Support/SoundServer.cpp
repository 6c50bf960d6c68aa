#include "Support/SoundServer.h"

#include "Support/ListeningSocket.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <thread>

namespace Ostrel {

namespace {

constexpr auto StartDeadline = std::chrono::seconds(30);
constexpr auto PollInterval = std::chrono::milliseconds(20);

template <typename Condition> bool comesTrue(const Condition& condition) {
    const auto deadline = std::chrono::steady_clock::now() + StartDeadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(PollInterval);
    }
    return true;
}

} // namespace

SoundServer::SoundServer(Kind kind)
    : kind_(kind)
    , socket_(folder_.path() + "/native") {
    setenv("PULSE_SERVER", ("unix:" + socket_).c_str(), 1);
}

SoundServer::~SoundServer() {
    kill();
    unsetenv("PULSE_SERVER");
}

std::optional<std::string> SoundServer::missingPart(Kind kind) {
    const std::vector<std::string> parts = kind == Kind::PulseAudio
        ? std::vector<std::string>{"pulseaudio", "pactl", "pacat"}
        : std::vector<std::string>{"pipewire", "wireplumber", "pipewire-pulse", "dbus-daemon", "pactl", "pacat"};
    for (const auto& part : parts) {
        if (!hasProgram(part))
            return part + " is not installed";
    }
    return std::nullopt;
}

bool SoundServer::start() {
    if (kind_ == Kind::PulseAudio)
        startPulseAudio();
    else
        startPipeWire();
    return comesTrue([this] { return isServing(); });
}

void SoundServer::startPulseAudio() {
    processes_.emplace_back(
        std::vector<std::string>{"pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "-L",
            "module-native-protocol-unix auth-anonymous=1 socket=" + socket_, "-L",
            "module-null-sink sink_name=test rate=" + std::to_string(SampleRateHz), "-L", "module-suspend-on-idle"},
        environment());
}

void SoundServer::startPipeWire() {
    std::filesystem::remove(folder_.path() + "/bus");
    std::filesystem::remove(folder_.path() + "/pipewire-0");
    processes_.emplace_back(std::vector<std::string>{"dbus-daemon", "--session", "--nofork",
                                "--address=unix:path=" + folder_.path() + "/bus"},
        environment());
    comesTrue([this] { return isListening(folder_.path() + "/bus"); });
    processes_.emplace_back(std::vector<std::string>{"pipewire"}, environment());
    comesTrue([this] { return isListening(folder_.path() + "/pipewire-0"); });
    processes_.emplace_back(std::vector<std::string>{"wireplumber"}, environment());
    processes_.emplace_back(std::vector<std::string>{"pipewire-pulse"}, environment());
    comesTrue([this] {
        return ChildProcess({"pactl", "load-module", "module-null-sink", "sink_name=test"}, environment()).wait() == 0;
    });
    comesTrue([this] { return ChildProcess({"pactl", "set-default-sink", "test"}, environment()).wait() == 0; });
}

bool SoundServer::isServing() const {
    return ChildProcess({"pactl", "get-sink-volume", "test"}, environment()).wait() == 0;
}

void SoundServer::kill() {
    signal(SIGKILL);
    processes_.clear();
}

void SoundServer::signal(int number) const {
    for (const auto& process : processes_)
        process.signal(number);
}

ChildProcess SoundServer::play(const std::string& clientName, std::span<const float> samples) {
    const std::string_view bytes(reinterpret_cast<const char*>(samples.data()), samples.size_bytes());
    const auto file = folder_.write("sound" + std::to_string(++soundCount_), bytes);
    return ChildProcess({"pacat", "--playback", "--raw", "--format=float32le", "--channels=1", "--latency-msec=30",
                            "--rate=" + std::to_string(SampleRateHz), "--client-name=" + clientName, file},
        environment());
}

bool SoundServer::isPlaying(int clients) const {
    return comesTrue([&] {
        FILE* list = popen("pactl list short sink-inputs", "r");
        int lines = 0;
        for (int c = 0; list && (c = std::fgetc(list)) != EOF;)
            lines += c == '\n' ? 1 : 0;
        return list && pclose(list) == 0 && lines == clients;
    });
}

ChildProcess::Environment SoundServer::environment() const {
    return {{"XDG_RUNTIME_DIR", folder_.path()}, {"PULSE_RUNTIME_PATH", folder_.path()}, {"HOME", folder_.path()},
        {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + folder_.path() + "/bus"}};
}

} // namespace Ostrel
