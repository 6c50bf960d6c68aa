#include "OstrelPlatform/Linux/Time/RepeatingSchedule.h"

#include <gtest/gtest.h>

namespace Ostrel {
namespace {

using Nanoseconds = RepeatingSchedule::Nanoseconds;

constexpr Nanoseconds Millisecond = 1'000'000;

/// A schedule whose owner wakes `lateness` after each beat.
class RepeatingScheduleTest : public testing::Test {
protected:
    RepeatingSchedule::Handle add(Nanoseconds periodMilliseconds, const std::string& name) {
        return schedule.add(periodMilliseconds * Millisecond, now,
            [this, name] { log += name + "@" + std::to_string(now / Millisecond) + " "; });
    }

    void runUntil(Nanoseconds milliseconds, Nanoseconds lateness = 0) {
        for (auto next = schedule.nextBeat(); next && *next + lateness <= milliseconds * Millisecond;
             next = schedule.nextBeat()) {
            now = *next + lateness;
            wakes += schedule.fire(now, [] {});
        }
        now = milliseconds * Millisecond;
    }

    RepeatingSchedule schedule;
    Nanoseconds now = 0;
    std::string log;
    int wakes = 0;
};

TEST_F(RepeatingScheduleTest, firesEqualPeriodsInOneWakeInTheOrderTheyWereMade) {
    const auto a = add(1000, "a");
    now = 5 * Millisecond;
    const auto b = add(1000, "b");
    runUntil(2000);
    EXPECT_EQ(log, "a@1000 b@1000 a@2000 b@2000 ");
    EXPECT_EQ(wakes, 2);
}

TEST_F(RepeatingScheduleTest, joinsTheBeatNearestToOnePeriodFromNow) {
    const auto a = add(1000, "a");
    runUntil(1300);
    const auto early = add(1000, "b");
    now = 1600 * Millisecond;
    const auto late = add(1000, "c");
    log.clear();
    runUntil(3000);
    EXPECT_EQ(log, "a@2000 b@2000 a@3000 b@3000 c@3000 ");
}

TEST_F(RepeatingScheduleTest, letsPeriodsShareTheirBeats) {
    const auto second = add(1000, "a");
    now = 130 * Millisecond;
    const auto half = add(500, "b");
    runUntil(2000);
    EXPECT_EQ(log, "b@500 a@1000 b@1000 b@1500 a@2000 b@2000 ");
    EXPECT_EQ(wakes, 4);
}

TEST_F(RepeatingScheduleTest, firesOnceAfterASleepAndReturnsToTheGrid) {
    const auto a = add(1000, "a");
    now = 7450 * Millisecond;
    EXPECT_TRUE(schedule.fire(now, [] {}));
    EXPECT_FALSE(schedule.fire(now, [] {}));
    runUntil(9000);
    EXPECT_EQ(log, "a@7450 a@8000 a@9000 ");
}

TEST_F(RepeatingScheduleTest, keepsTheGridOfSlowTimersAndThePaceOfFastOnes) {
    struct Case {
        Nanoseconds period, lateness, from, to;
        const char* expected;
    };
    for (const Case& c : {Case{1000, 3, 0, 3100, "a@1003 a@2003 a@3003 "}, Case{17, 3, 0, 80, "a@20 a@39 a@59 a@79 "},
             Case{20, 2, 0, 80, "a@22 a@42 a@62 "}}) {
        SCOPED_TRACE(c.period);
        schedule = {};
        now = 0;
        log.clear();
        const auto a = add(c.period, "a");
        runUntil(c.to, c.lateness * Millisecond);
        EXPECT_EQ(log, c.expected);
    }
}

TEST_F(RepeatingScheduleTest, makesUpForALateFrameInSmallSteps) {
    const auto a = add(17, "a");
    now = 19 * Millisecond;
    schedule.fire(now, [] {});
    while (now < 400 * Millisecond) {
        const Nanoseconds before = now;
        now = *schedule.nextBeat();
        schedule.fire(now, [] {});
        EXPECT_GT(now - before, 1'000'000'000 / 60);
        EXPECT_LE(now - before, 17 * Millisecond);
    }
    EXPECT_EQ(now % (17 * Millisecond), 0);
}

TEST_F(RepeatingScheduleTest, survivesTimersThatEndAndBeginInABody) {
    RepeatingSchedule::Handle self, other, added;
    const auto first = schedule.add(Millisecond, now, [&] {
        log += "first ";
        other.reset();
        if (!added)
            added = schedule.add(Millisecond, now, [&] { log += "added "; });
    });
    self = schedule.add(Millisecond, now, [&] {
        log += "self ";
        self.reset();
        log += "gone ";
    });
    other = schedule.add(Millisecond, now, [&] { log += "never "; });
    runUntil(2);
    EXPECT_EQ(log, "first self gone first added ");
}

TEST_F(RepeatingScheduleTest, wakesNobodyWithoutTimers) {
    EXPECT_FALSE(schedule.nextBeat());
    add(10, "dropped").reset();
    EXPECT_FALSE(schedule.nextBeat());
    now = 25 * Millisecond;
    const auto a = add(10, "a");
    EXPECT_EQ(schedule.nextBeat(), 35 * Millisecond);
    EXPECT_FALSE(schedule.fire(34 * Millisecond, [] { FAIL() << "nothing was due"; }));
}

} // namespace
} // namespace Ostrel
