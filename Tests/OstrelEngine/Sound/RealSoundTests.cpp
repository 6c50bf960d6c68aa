#include "OstrelEngine/Sound/AudioLevelSpectrumSource.h"
#include "OstrelEngine/Sound/Tones.h"
#include "OstrelPlatform/Linux/Sound/LazySoundControl.h"
#include "OstrelPlatform/Linux/Sound/LinuxSound.h"
#include "OstrelPlatform/Linux/Time/LinuxClock.h"
#include "OstrelPlatform/VirtualTime.h"
#include "Support/MissingTool.h"
#include "Support/SoundServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <mutex>
#include <thread>

namespace Ostrel {

using testing::Contains;
using testing::Not;

namespace {

using Seconds = std::chrono::duration<double>;

constexpr Seconds Deadline{30};
constexpr Seconds UpdateInterval{0.016};

/// A listener that updates as a widget does, and a sound server of its own.
class RealSound : public testing::TestWithParam<SoundServer::Kind> {
protected:
    void SetUp() override {
        if (const auto missing = SoundServer::missingPart(GetParam()))
            OSTREL_SKIP_FOR_WANT_OF(*missing);
        server.emplace(GetParam());
    }

    std::span<const double> update() {
        std::this_thread::sleep_for(UpdateInterval);
        return source.spectrum(request);
    }
    template <typename Condition> bool comesTrue(const Condition& condition) {
        const auto end = std::chrono::steady_clock::now() + Deadline;
        while (std::chrono::steady_clock::now() < end) {
            if (condition(update()))
                return true;
        }
        return false;
    }
    static std::size_t bandOf(double hertz) {
        const auto edges = SpectrumBands::computeBandFrequencies(request.bands, 20, 16000);
        return static_cast<std::size_t>(std::ranges::upper_bound(edges, hertz) - edges.begin());
    }
    static std::size_t loudest(std::span<const double> levels) {
        return static_cast<std::size_t>(std::ranges::max_element(levels) - levels.begin());
    }
    bool hears(double hertz) {
        return comesTrue([&](auto levels) { return loudest(levels) == bandOf(hertz) && levels[bandOf(hertz)] > 0.5; });
    }
    bool fallsSilent() {
        return comesTrue([](auto levels) { return *std::ranges::max_element(levels) == 0; });
    }
    ChildProcess play(double hertz, const std::string& client = "Somebody") {
        return server->play(client, tone(hertz, SoundServer::SampleRateHz, SoundServer::SampleRateHz * 60, 0.5));
    }
    std::vector<std::string> log() {
        const std::scoped_lock lock(mutex);
        return lines;
    }

    static constexpr SpectrumRequest request{.bands = 24, .fftDecayMs = 50};
    std::optional<SoundServer> server;
    std::mutex mutex;
    std::vector<std::string> lines;
    LinuxClock clock;
    VirtualTime mainQueue;
    AudioLevelSpectrumSource source{{[] { return LinuxSound::open(OSTREL_SOUND_MODULE_FILE); }, clock, mainQueue,
        [this](std::string_view line) {
            const std::scoped_lock lock(mutex);
            lines.emplace_back(line);
        }}};
};

} // namespace

TEST_P(RealSound, raisesTheBandsOfWhatPlays) {
    ASSERT_TRUE(server->start());
    for (const double hertz : {150.0, 1000.0, 6000.0}) {
        const auto player = play(hertz);
        EXPECT_TRUE(hears(hertz)) << hertz << testing::PrintToString(log());
    }
    EXPECT_TRUE(fallsSilent());

    std::vector<float> sweep(SoundServer::SampleRateHz * 4);
    double phase = 0;
    for (std::size_t i = 0; i < sweep.size(); ++i) {
        phase += 200 * std::pow(40.0, static_cast<double>(i) / static_cast<double>(sweep.size()))
            / SoundServer::SampleRateHz;
        sweep[i] = static_cast<float>(0.5 * std::sin(2 * std::numbers::pi * phase));
    }
    const auto player = server->play("Somebody", sweep);
    std::size_t highest = bandOf(200);
    EXPECT_TRUE(hears(200));
    EXPECT_TRUE(comesTrue([&](auto levels) {
        const auto now = levels[loudest(levels)] > 0.3 ? loudest(levels) : highest;
        EXPECT_GE(now + 1, highest) << "a sweep does not come back";
        highest = std::max(highest, now);
        return highest == bandOf(7900);
    }));
}

TEST_P(RealSound, hearsOnlyThePlayerWhereOneRuns) {
    ASSERT_TRUE(server->start());
    const auto other = play(5000, "Somebody");
    const auto player = play(440, "Spotify");
    ASSERT_TRUE(server->isPlaying(2));
    EXPECT_TRUE(hears(440)) << testing::PrintToString(log());
    EXPECT_THAT(log(), Contains("[AudioLevel] Using Spotify process-targeted tap."));
    double own = 0;
    double others = 0; // a machine under load drops pieces, and each gap is a little noise
    for (int i = 0; i < 60; ++i) {
        const auto levels = update();
        own += levels[bandOf(440)];
        others += levels[bandOf(5000)];
    }
    EXPECT_LT(others, own / 5);
    player.signal(SIGSTOP);
    EXPECT_TRUE(fallsSilent()) << "a player that pauses lets the bars fall";
    player.signal(SIGCONT);
    EXPECT_TRUE(hears(440));
}

TEST_P(RealSound, costsOnlyARetryWhenTheServerIsMissingOrDies) {
    update();
    EXPECT_TRUE(comesTrue([&](auto) { return log().size() >= 3; }));
    EXPECT_THAT(log(), Contains("[AudioLevel] Process tap creation failed (6); retrying later."));
    ASSERT_TRUE(server->start());
    {
        const auto player = play(1000);
        EXPECT_TRUE(hears(1000)) << testing::PrintToString(log());
        EXPECT_THAT(log(), Not(Contains("[AudioLevel] Process tap lost; will retry later.")));
        server->kill();
        EXPECT_TRUE(comesTrue(
            [&](auto) { return std::ranges::count(log(), "[AudioLevel] Process tap lost; will retry later.") == 1; }));
    }
    ASSERT_TRUE(server->start());
    const auto player = play(3000);
    EXPECT_TRUE(hears(3000)) << testing::PrintToString(log());
}

TEST_P(RealSound, keepsUpdatingWhileTheServerHangs) {
    ASSERT_TRUE(server->start());
    server->signal(SIGSTOP);
    Seconds longest{0};
    const auto failed = [&](auto) {
        const auto written = log();
        return std::ranges::any_of(written, [](const auto& line) { return line.find("failed (8)") != line.npos; });
    };
    EXPECT_TRUE(comesTrue([&](auto levels) {
        const auto before = std::chrono::steady_clock::now();
        source.spectrum(request);
        longest = std::max(longest, Seconds(std::chrono::steady_clock::now() - before));
        return failed(levels);
    }));
    EXPECT_LT(longest, Seconds(0.5)) << "the widget never waits for the server";
    server->signal(SIGCONT);
    const auto player = play(1000);
    EXPECT_TRUE(hears(1000)) << testing::PrintToString(log());
}

TEST_P(RealSound, controlsTheOutputAndFollowsIt) {
    ASSERT_TRUE(server->start());
    VirtualTime queue;
    LazySoundControl sound(queue, OSTREL_SOUND_MODULE_FILE);
    const auto becomes = [&](auto condition) {
        const auto end = std::chrono::steady_clock::now() + Deadline;
        while (std::chrono::steady_clock::now() < end) {
            queue.runQueued();
            if (condition(sound.state()))
                return true;
            std::this_thread::sleep_for(UpdateInterval);
        }
        return false;
    };
    using State = SoundControl::State;
    ASSERT_TRUE(becomes([](const State& state) { return state.isKnown; }));
    EXPECT_NE(sound.state().description, "");
    sound.setVolume(37);
    EXPECT_TRUE(becomes([](const State& state) { return state.volume == 37 && !state.isMuted; }));
    sound.toggleMute();
    EXPECT_TRUE(becomes([](const State& state) { return state.isMuted; }));
    sound.setVolume(80);
    EXPECT_TRUE(becomes([](const State& state) { return state.volume == 80 && !state.isMuted; }));
    sound.chooseNext(1);
    sound.choose(99);
    server->kill();
    EXPECT_TRUE(becomes([](const State& state) { return !state.isKnown; }));
}

INSTANTIATE_TEST_SUITE_P(Servers, RealSound,
    testing::Values(SoundServer::Kind::PulseAudio, SoundServer::Kind::PipeWire), [](const auto& kind) {
        return std::string(kind.param == SoundServer::Kind::PulseAudio ? "PulseAudio" : "PipeWire");
    });

} // namespace Ostrel
