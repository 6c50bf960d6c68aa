#include "OstrelEngine/Sound/AudioLevelSpectrumSource.h"

#include "OstrelEngine/Sound/FakeAudioSystem.h"
#include "OstrelEngine/Sound/Tones.h"
#include "OstrelPlatform/ThreadSerialQueue.h"
#include "OstrelPlatform/VirtualTime.h"
#include "Support/AllocationCounter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

namespace Ostrel {

namespace {

struct SpectrumSourceTest : testing::Test {
    AudioLevelSpectrumSource::Environment environment() {
        return {[this] {
                    auto opened = std::make_unique<FakeAudioSystem>(time);
                    system = opened.get();
                    return opened;
                },
            time, time, [](std::string_view) {}};
    }
    void play(double hertz, double seconds) {
        const auto samples = tone(hertz, 48000, static_cast<std::size_t>(seconds * 48000), 0.5);
        const auto bytes = std::as_bytes(std::span(samples));
        system->deliver({&bytes, 1});
    }
    std::size_t loudestBand(const SpectrumRequest& request) {
        const auto levels = source.spectrum(request);
        return static_cast<std::size_t>(std::max_element(levels.begin(), levels.end()) - levels.begin());
    }

    VirtualTime time;
    FakeAudioSystem* system = nullptr;
    AudioLevelSpectrumSource source{environment()};
};

/// A sound system whose queue is a real thread.
struct ThreadedAudioSystem final : AudioSystem {
    explicit ThreadedAudioSystem(const Clock& clock)
        : fake(clock) { }
    ThreadSerialQueue& queue() override { return thread; }
    AudioTap& tap() override { return fake; }

    FakeAudioSystem fake;
    ThreadSerialQueue thread;
};

} // namespace

TEST_F(SpectrumSourceTest, opensNothingBeforeSomebodyListens) {
    EXPECT_EQ(system, nullptr);
    EXPECT_EQ(source.spectrum({}).size(), 64U);
    ASSERT_NE(system, nullptr);
    EXPECT_EQ(system->takeCalls(), "") << "the start is posted, the caller does not wait for it";
    system->queue().runDue();
    EXPECT_THAT(system->takeCalls(), testing::EndsWith("start 13\n"));
}

TEST_F(SpectrumSourceTest, raisesTheBandOfATone) {
    source.spectrum({});
    system->queue().runDue();
    for (const double hertz : {60.0, 250.0, 1000.0, 4000.0, 12000.0}) {
        play(hertz, 2);
        const SpectrumRequest request{.bands = 32, .fftSize = 8192, .fftOverlap = 4096, .fftDecayMs = 0};
        source.spectrum(request);
        play(hertz, 2);
        const auto edges = SpectrumBands::computeBandFrequencies(32, 20, 16000);
        const auto band = loudestBand(request);
        EXPECT_LT(band == 0 ? 20 : edges[band - 1], hertz);
        EXPECT_GT(edges[band], hertz);
        EXPECT_NEAR(source.spectrum(request)[band], 1 / 1.55, 0.01) << "a loud tone drives its band fully";
    }
}

TEST_F(SpectrumSourceTest, letsTwoListenersResetEachOther) {
    const SpectrumRequest large{.fftSize = 4096, .fftOverlap = 2048};
    source.spectrum({});
    system->queue().runDue();
    play(1000, 1);
    EXPECT_GT(*std::ranges::max_element(source.spectrum({})), 0.3);
    EXPECT_EQ(*std::ranges::max_element(source.spectrum(large)), 0);
    EXPECT_EQ(*std::ranges::max_element(source.spectrum({})), 0);
    EXPECT_EQ(source.spectrum({.bands = 0}).size(), 0U);
}

TEST_F(SpectrumSourceTest, takesSamplesFromElsewhereOverTheQueue) {
    const auto samples = tone(1000, 44100, 44100);
    source.ingestSamples({}, 44100);
    source.ingestSamples(samples, 44100);
    EXPECT_EQ(*std::ranges::max_element(source.spectrum({})), 0) << "posted, not yet run";
    system->queue().runDue();
    EXPECT_GT(*std::ranges::max_element(source.spectrum({})), 0.3);
}

TEST_F(SpectrumSourceTest, allocatesNothingInTheSteadyState) {
    source.spectrum({});
    system->queue().runDue();
    const std::vector<float> samples(800, 0.1F);
    const auto bytes = std::as_bytes(std::span(samples));
    system->deliver({&bytes, 1});
    source.spectrum({});
    const auto before = allocationCount();
    for (int i = 0; i < 100; ++i) {
        system->block({&bytes, 1}, {});
        source.spectrum({});
    }
    EXPECT_EQ(allocationCount(), before);
}

TEST(SpectrumSource, servesTheMainThreadWhileSoundPoursIn) {
    VirtualTime time;
    ThreadedAudioSystem* system = nullptr;
    AudioLevelSpectrumSource source({[&] {
                                         auto opened = std::make_unique<ThreadedAudioSystem>(time);
                                         system = opened.get();
                                         return opened;
                                     },
        time, time, [](std::string_view) {}});
    source.spectrum({});
    const auto samples = tone(1000, 48000, 480);
    std::atomic<bool> stops = false;
    std::thread player([&] {
        while (!stops)
            system->queue().sync([&] { source.ingestSamples(samples, 48000); });
    });
    double highest = 0;
    for (int i = 0; i < 3000; ++i) {
        const std::int64_t size = i % 100 == 0 ? 4096 : 2048;
        const auto levels = source.spectrum({.fftSize = size, .fftOverlap = i % 50});
        ASSERT_EQ(levels.size(), 64U);
        for (const double level : levels) {
            ASSERT_TRUE(level >= 0 && level <= 1 / 1.55);
            highest = std::max(highest, level);
        }
    }
    stops = true;
    player.join();
    EXPECT_GT(highest, 0);
}

} // namespace Ostrel
