#include "OstrelPlatform/VirtualTime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace Ostrel {
namespace {

using testing::ElementsAre;

TEST(VirtualTimeTests, movesOnlyWhenTold) {
    VirtualTime time(1000);
    std::vector<std::string> events;
    const auto timer = time.startRepeating(1, [&] { events.emplace_back("timer"); });
    time.post([&] { events.emplace_back("posted"); });
    time.postAfter(2, [&] { events.emplace_back("delayed"); });

    time.advance(1.5);
    EXPECT_EQ(time.elapsedSeconds(), 1.5);
    EXPECT_EQ(time.uptimeSeconds(), 3601.5);
    EXPECT_EQ(time.wallSeconds(), 1000);
    EXPECT_TRUE(events.empty());

    time.runQueued();
    EXPECT_THAT(events, ElementsAre("posted"));
    time.fireTimers();
    time.advance(0.5);
    time.runQueued();
    EXPECT_THAT(events, ElementsAre("posted", "timer", "delayed"));
}

TEST(VirtualTimeTests, runsEverythingAtItsTime) {
    VirtualTime time;
    std::vector<std::string> events;
    const auto note = [&](const char* name) {
        return [&events, &time, name] {
            events.push_back(name + std::to_string(static_cast<int>(time.elapsedSeconds())));
        };
    };
    const auto slow = time.startRepeating(2, note("slow"));
    const auto quick = time.startRepeating(1, note("quick"));
    time.onWake = note("wake");
    time.postAfter(3, note("last"));
    time.postAfter(1, note("first"));
    time.runFor(3.5);
    EXPECT_THAT(
        events, ElementsAre("wake1", "quick1", "first1", "wake2", "slow2", "quick2", "wake3", "quick3", "last3"));
    EXPECT_EQ(time.elapsedSeconds(), 3.5);
}

TEST(VirtualTimeTests, letsATimerEndItselfAndOthers) {
    VirtualTime time;
    int fired = 0;
    std::unique_ptr<RepeatingTimer> first;
    std::unique_ptr<RepeatingTimer> second;
    first = time.startRepeating(1, [&] {
        ++fired;
        second.reset();
        first.reset();
    });
    second = time.startRepeating(1, [&] { fired += 100; });
    time.runFor(5);
    EXPECT_EQ(fired, 1);
}

TEST(VirtualTimeTests, takesWorkFromOtherThreadsAndCutsOffEndlessWork) {
    VirtualTime time;
    int runs = 0;
    std::thread([&] {
        EXPECT_FALSE(time.isMainThread());
        time.post([&] { ++runs; });
    }).join();
    time.runQueued();
    EXPECT_EQ(runs, 1);

    std::function<void()> endless = [&] {
        ++runs;
        time.post(endless);
    };
    time.post(endless);
    time.runQueued();
    EXPECT_GT(runs, 1000);
}

} // namespace
} // namespace Ostrel
