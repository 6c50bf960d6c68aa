#pragma once

#include "Support/ChildProcess.h"
#include "Support/TemporaryFolder.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Ostrel {

/// A sound server of the test's own, with one output that goes nowhere. While it lives, the clients in this process
/// talk to it.
class SoundServer {
public:
    enum class Kind { PulseAudio, PipeWire };
    static constexpr int SampleRateHz = 48000;

    explicit SoundServer(Kind kind);
    ~SoundServer();

    /// Why the machine cannot run it; absent when it can.
    static std::optional<std::string> missingPart(Kind kind);

    /// True once clients are served.
    bool start();
    /// As if it had crashed.
    void kill();
    /// All processes of the server.
    void signal(int number) const;
    /// A client of that name that plays these mono samples once.
    ChildProcess play(const std::string& clientName, std::span<const float> samples);
    /// True once it knows of so many playing clients.
    bool isPlaying(int clients) const;

private:
    void startPulseAudio();
    void startPipeWire();
    bool isServing() const;
    ChildProcess::Environment environment() const;

    Kind kind_;
    TemporaryFolder folder_;
    std::string socket_;
    int soundCount_ = 0;
    std::vector<ChildProcess> processes_;
};

} // namespace Ostrel
