#include "OstrelEngine/Sound/AudioCapture.h"

#include "OstrelEngine/Sound/FakeAudioSystem.h"
#include "OstrelEngine/Sound/SpectrumAnalyzer.h"
#include "OstrelPlatform/VirtualTime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// An event loop seen from another thread.
struct OtherThreadsQueue final : MainQueue {
    std::vector<std::function<void()>> posted;
    void post(std::function<void()> work) override { posted.push_back(std::move(work)); }
    void postAfter(double, std::function<void()> work) override { posted.push_back(std::move(work)); }
    bool isMainThread() const override { return false; }
    std::unique_ptr<RepeatingTimer> startRepeating(double, std::function<void()>) override { return nullptr; }
};

struct AudioCaptureTest : testing::Test {
    AudioCaptureTest() { capture = makeCapture(time); }

    std::shared_ptr<AudioCapture> makeCapture(MainQueue& mainQueue) {
        return std::make_shared<AudioCapture>(AudioCapture::Environment{
            system, analyzer, time, mainQueue, [this](std::string_view line) { lines.emplace_back(line); }});
    }
    /// A measure asks, and the queue does what is due.
    void ask() {
        capture->ensureStarted();
        system.queue().runDue();
    }
    void pass(double seconds) {
        time.advance(seconds);
        system.queue().runDue();
    }
    /// The log since the last look, without its prefix.
    std::vector<std::string> takeLog() {
        std::vector<std::string> taken;
        for (const auto& line : lines) {
            EXPECT_THAT(line, testing::StartsWith("[AudioLevel] "));
            taken.push_back(line.substr(13));
        }
        lines.clear();
        return taken;
    }
    void deliver(const std::vector<float>& samples) {
        const auto bytes = std::as_bytes(std::span(samples));
        system.deliver({&bytes, 1});
    }
    void playerRuns() {
        system.player = 42;
        system.processObjects[42] = 420;
    }

    VirtualTime time;
    FakeAudioSystem system{time};
    SpectrumAnalyzer analyzer;
    std::vector<std::string> lines;
    std::shared_ptr<AudioCapture> capture;
};

} // namespace

TEST_F(AudioCaptureTest, tapsEverythingWhenThePlayerDoesNotRun) {
    ask();
    EXPECT_THAT(takeLog(),
        ElementsAre("Starting process tap capture.", "Using global output tap.", "Process tap created (id=11).",
            "Aggregate device created (id=12).", "Process tap capture started."));
    EXPECT_EQ(system.takeCalls(), "create tap 11\ncreate aggregate 12\ncreate io proc 13\nstart 13\n");
    EXPECT_EQ(system.tapDescription.scope, AudioTapDescription::Scope::GlobalExcluding);
    EXPECT_THAT(system.tapDescription.processes, ElementsAre(70U)) << "our own sound is none of it";
    EXPECT_EQ(system.tapDescription.name, "Ostrel System Audio Tap");
    EXPECT_EQ(system.aggregateDescription.name, "Ostrel Audio Tap Aggregate");
    EXPECT_EQ(system.aggregateDescription.uid, "dev.ostrel.aggregate." + system.tapDescription.uuid);
    EXPECT_EQ(system.aggregateDescription.tapUUID, system.tapDescription.uuid);
    EXPECT_EQ(system.aggregateDescription.outputDeviceUID, "speakers");
    EXPECT_EQ(analyzer.latestSampleRate(), 48000);
    ask();
    EXPECT_THAT(takeLog(), IsEmpty()) << "a start under way is not repeated";
}

TEST_F(AudioCaptureTest, takesTheSystemOutputFirstAndLivesWithoutEither) {
    system.systemOutput = 6;
    ask();
    EXPECT_EQ(system.aggregateDescription.outputDeviceUID, "bell");
    const auto firstUUID = system.tapDescription.uuid;
    system.deviceUIDs = {};
    system.processObjects = {};
    pass(2);
    pass(2);
    ask();
    EXPECT_EQ(system.aggregateDescription.outputDeviceUID, std::nullopt);
    EXPECT_THAT(system.tapDescription.processes, IsEmpty());
    EXPECT_NE(system.tapDescription.uuid, firstUUID);
}

TEST_F(AudioCaptureTest, cyclesFromThePlayerToEverythingAndBackWhileNothingPlays) {
    playerRuns();
    for (int cycle = 0; cycle < 2; ++cycle) {
        ask();
        EXPECT_THAT(takeLog(),
            ElementsAre("Starting process tap capture.", "Using Spotify process-targeted tap.", testing::_, testing::_,
                "Process tap capture started."));
        EXPECT_EQ(system.tapDescription.scope, AudioTapDescription::Scope::MixdownOf);
        EXPECT_THAT(system.tapDescription.processes, ElementsAre(420U));
        pass(1.999);
        EXPECT_THAT(takeLog(), IsEmpty());
        pass(0.001);
        EXPECT_THAT(takeLog(),
            ElementsAre("Spotify process tap produced no audio; retrying with global output tap.",
                "Starting process tap capture.", "Using global output tap.", testing::_, testing::_,
                "Process tap capture started."));
        pass(2);
        EXPECT_THAT(takeLog(), ElementsAre("Process tap produced no audio; will retry later."));
        ask();
        pass(1.999);
        ask();
        EXPECT_THAT(takeLog(), IsEmpty()) << "not before two seconds";
        pass(0.001);
        EXPECT_THAT(takeLog(), IsEmpty()) << "and not by itself";
    }
    EXPECT_EQ(system.takeCalls(),
        "create tap 11\ncreate aggregate 12\ncreate io proc 13\nstart 13\n"
        "stop 13\ndestroy io proc 13 of 12\ndestroy aggregate 12\ndestroy tap 11\n"
        "create tap 14\ncreate aggregate 15\ncreate io proc 16\nstart 16\n"
        "stop 16\ndestroy io proc 16 of 15\ndestroy aggregate 15\ndestroy tap 14\n"
        "create tap 17\ncreate aggregate 18\ncreate io proc 19\nstart 19\n"
        "stop 19\ndestroy io proc 19 of 18\ndestroy aggregate 18\ndestroy tap 17\n"
        "create tap 20\ncreate aggregate 21\ncreate io proc 22\nstart 22\n"
        "stop 22\ndestroy io proc 22 of 21\ndestroy aggregate 21\ndestroy tap 20\n");
}

TEST_F(AudioCaptureTest, releasesInReverseAndRetriesAfterAFailure) {
    struct Case {
        std::string what;
        AudioObjectResult answer;
        std::string line;
        std::string calls;
    };
    const Case cases[] = {
        {"tap", {-50, 0}, "Process tap creation failed (-50); retrying later.", "fail tap\n"},
        {"tap", {0, 0}, "Process tap creation failed (0); retrying later.", "fail tap\n"},
        {"tap", {9, 99}, "Process tap creation failed (9); retrying later.", "fail tap\n"},
        {"aggregate", {0, 0}, "Aggregate device creation failed (0); retrying later.",
            "create tap 1\nfail aggregate\ndestroy tap 1\n"},
        {"io proc", {560947818, 0}, "Process tap IOProc creation failed (560947818); retrying later.",
            "create tap 1\ncreate aggregate 2\nfail io proc\ndestroy aggregate 2\ndestroy tap 1\n"},
        {"start", {3, 0}, "Process tap start failed (3); retrying later.",
            "create tap 1\ncreate aggregate 2\ncreate io proc 3\nstart 3\n"
            "destroy io proc 3 of 2\ndestroy aggregate 2\ndestroy tap 1\n"},
    };
    for (const auto& [what, answer, line, calls] : cases) {
        VirtualTime clock;
        FakeAudioSystem fake(clock, 0);
        const auto tried = std::make_shared<AudioCapture>(AudioCapture::Environment{
            fake, analyzer, clock, clock, [this](std::string_view text) { lines.emplace_back(text); }});
        fake.failing[what] = answer;
        tried->ensureStarted();
        fake.queue().runDue();
        EXPECT_EQ(takeLog().back(), line);
        EXPECT_EQ(fake.takeCalls(), calls) << line;
        EXPECT_EQ(fake.queue().pendingCount(), 0U) << "no watchdog for what never ran";

        fake.failing.clear();
        clock.advance(1.99);
        tried->ensureStarted();
        fake.queue().runDue();
        EXPECT_EQ(fake.takeCalls(), "") << line;
        clock.advance(0.01);
        tried->ensureStarted();
        fake.queue().runDue();
        EXPECT_EQ(takeLog().back(), "Process tap capture started.");
    }
}

TEST_F(AudioCaptureTest, givesUpForGoodWhereThereAreNoTaps) {
    system.supported = false;
    ask();
    EXPECT_THAT(takeLog(),
        ElementsAre("Starting process tap capture.", "Process tap unsupported on this macOS; audio capture disabled."));
    pass(100);
    ask();
    EXPECT_THAT(takeLog(), IsEmpty());
    EXPECT_EQ(system.takeCalls(), "");
}

TEST_F(AudioCaptureTest, asksForAccessOnTheMainThreadAndStartsAllTheSame) {
    const std::string pending
        = "Screen/system-audio access pending or denied; continuing startup to surface system audio permission prompt.";
    const std::string asking = "Requesting Screen Recording access for process tap capture.";
    system.access = false;
    OtherThreadsQueue mainQueue;
    capture = makeCapture(mainQueue);
    ask();
    const auto log = takeLog();
    EXPECT_EQ(log.at(1), pending);
    EXPECT_EQ(log.back(), "Process tap capture started.");
    EXPECT_THAT(system.takeCalls(), testing::Not(testing::HasSubstr("access")));
    ASSERT_EQ(mainQueue.posted.size(), 1U);
    mainQueue.posted.front()();
    EXPECT_THAT(takeLog(), ElementsAre(asking));
    EXPECT_EQ(system.takeCalls(), "bring forward\nrequest access\n");

    system.access = true;
    mainQueue.posted.front()();
    EXPECT_THAT(takeLog(), IsEmpty()) << "granted in the meantime";

    system.access = false;
    capture = makeCapture(time);
    ask();
    const auto onMainThread = takeLog();
    EXPECT_EQ(onMainThread.at(1), asking);
    EXPECT_EQ(onMainThread.at(2), pending);
}

TEST_F(AudioCaptureTest, runsFromTheFirstBufferOnEvenOfSilence) {
    system.format = std::nullopt;
    system.nominalRate = 96000;
    ask();
    EXPECT_EQ(analyzer.latestSampleRate(), 96000);
    takeLog();
    system.takeCalls();
    deliver({});
    pass(1);
    system.scopeFormats[AudioScope::Global] = {.sampleRateHz = 44100.5, .channels = 1};
    deliver({0, 0, 0});
    EXPECT_EQ(system.takeCalls(), "format of 12 in 0\nformat of 12 in 1\nformat of 12 in 2\n");
    EXPECT_THAT(
        takeLog(), ElementsAre("Received process-tap audio buffer (frames=3, channels=1, sampleRate=44100.5)."));
    EXPECT_EQ(analyzer.latestSampleRate(), 44100.5);
    deliver({0});
    pass(100);
    ask();
    EXPECT_THAT(takeLog(), IsEmpty()) << "logged once, and no watchdog any more";
}

TEST_F(AudioCaptureTest, takesTheOutputWhereTheInputIsEmpty) {
    ask();
    const std::vector<float> sound(4096, 0.5F);
    const auto bytes = std::as_bytes(std::span(sound));
    const std::span<const std::byte> empty;
    system.deliver({&empty, 1}, {&bytes, 1});
    EXPECT_EQ(analyzer.transformCount(), 4U);
    system.deliver({&empty, 1}, {&empty, 1});
    EXPECT_EQ(analyzer.transformCount(), 4U);
}

TEST_F(AudioCaptureTest, countsWhatItCannotReadAsReceived) {
    system.format->formatID = 0x61632D33; // 'ac-3'
    ask();
    takeLog();
    deliver(std::vector<float>(4096, 0.5F));
    pass(100);
    EXPECT_THAT(takeLog(), IsEmpty());
    EXPECT_EQ(analyzer.transformCount(), 0U);
}

TEST_F(AudioCaptureTest, startsAgainWhenTheSoundSystemEndsTheDelivery) {
    ask();
    deliver({0});
    takeLog();
    system.takeCalls();
    system.queue().sync(system.onLost);
    EXPECT_THAT(takeLog(), ElementsAre("Process tap lost; will retry later."));
    EXPECT_EQ(system.takeCalls(), "stop 13\ndestroy io proc 13 of 12\ndestroy aggregate 12\ndestroy tap 11\n");
    system.queue().sync(system.onLost);
    deliver(std::vector<float>(4096, 0.5F));
    EXPECT_EQ(analyzer.transformCount(), 0U) << "a late buffer of a tap that is gone";
    pass(2);
    ask();
    EXPECT_EQ(takeLog().back(), "Process tap capture started.");
    deliver({0});
    EXPECT_THAT(takeLog().back(), testing::StartsWith("Received process-tap audio buffer (frames=1"));
}

TEST_F(AudioCaptureTest, isNotKeptAliveByWhatTheSystemHolds) {
    ask();
    const std::weak_ptr<AudioCapture> weak = capture;
    capture.reset();
    EXPECT_TRUE(weak.expired());
    deliver(std::vector<float>(4096, 0.5F));
    system.queue().sync(system.onLost);
    pass(2);
    EXPECT_EQ(analyzer.transformCount(), 0U);
}

} // namespace Ostrel
