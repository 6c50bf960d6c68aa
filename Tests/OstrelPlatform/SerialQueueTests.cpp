#include "OstrelPlatform/Clock.h"
#include "OstrelPlatform/ThreadSerialQueue.h"
#include "OstrelPlatform/VirtualSerialQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>

namespace Ostrel {

using testing::ElementsAre;

namespace {

struct ManualClock final : Clock {
    double now = 100;
    double uptimeSeconds() const override { return now; }
    double wallSeconds() const override { return now; }
};

void waitFor(std::promise<void>& done) {
    ASSERT_EQ(done.get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
}

} // namespace

TEST(ThreadSerialQueue, runsPostedWorkInOrderOnItsOwnThread) {
    ThreadSerialQueue queue;
    std::vector<int> order;
    std::promise<void> done;
    queue.post([&] {
        EXPECT_TRUE(queue.isCurrent());
        order.push_back(1);
        queue.sync([&] { order.push_back(2); });
        queue.post([&] {
            order.push_back(4);
            done.set_value();
        });
        order.push_back(3);
    });
    waitFor(done);
    EXPECT_FALSE(queue.isCurrent());
    queue.sync([&] { EXPECT_THAT(order, ElementsAre(1, 2, 3, 4)); });
}

TEST(ThreadSerialQueue, runsDelayedWorkByItsDeadline) {
    ThreadSerialQueue queue;
    std::vector<int> order;
    std::promise<void> done;
    queue.sync([&] {
        queue.postAfter(0.02, [&] {
            order.push_back(2);
            done.set_value();
        });
        queue.postAfter(0.01, [&] { order.push_back(1); });
        queue.postAfter(1e300, [&] { order.push_back(9); });
        queue.postAfter(-5, [&] { order.push_back(0); });
    });
    waitFor(done);
    queue.sync([&] { EXPECT_THAT(order, ElementsAre(0, 1, 2)); });
}

TEST(ThreadSerialQueue, keepsTwoThreadsApart) {
    ThreadSerialQueue queue;
    constexpr int Rounds = 20000;
    int counter = 0; // unguarded but for the queue
    std::promise<void> done;
    std::thread poster([&] {
        for (int i = 0; i < Rounds; ++i)
            queue.post([&] { ++counter; });
        queue.post([&] { done.set_value(); });
    });
    for (int i = 0; i < Rounds; ++i)
        queue.sync([&] { ++counter; });
    poster.join();
    waitFor(done);
    queue.sync([&] { EXPECT_EQ(counter, 2 * Rounds); });
}

TEST(ThreadSerialQueue, letsOthersInWhileAPieceWaits) {
    ThreadSerialQueue queue;
    std::promise<void> entered;
    std::promise<void> visited;
    std::promise<void> done;
    queue.post([&] {
        queue.whileReleased([&] {
            EXPECT_FALSE(queue.isCurrent());
            entered.set_value();
            waitFor(visited);
        });
        EXPECT_TRUE(queue.isCurrent());
        done.set_value();
    });
    waitFor(entered);
    queue.sync([&] { visited.set_value(); });
    waitFor(done);
}

TEST(ThreadSerialQueue, dropsWhatIsQueuedAtItsEnd) {
    bool ran = false;
    {
        ThreadSerialQueue queue;
        queue.postAfter(1000, [&] { ran = true; });
    }
    EXPECT_FALSE(ran);
}

TEST(VirtualSerialQueue, runsByTheOwnersClock) {
    ManualClock clock;
    VirtualSerialQueue queue(clock);
    std::vector<int> order;
    queue.postAfter(2, [&] { order.push_back(3); });
    queue.post([&] {
        EXPECT_TRUE(queue.isCurrent());
        order.push_back(1);
        queue.post([&] { order.push_back(2); });
    });
    EXPECT_TRUE(order.empty()) << "never at once";
    queue.runDue();
    EXPECT_THAT(order, ElementsAre(1, 2));
    clock.now += 1.999;
    queue.runDue();
    EXPECT_EQ(queue.pendingCount(), 1U);
    clock.now += 0.001;
    queue.runDue();
    EXPECT_THAT(order, ElementsAre(1, 2, 3));
    EXPECT_FALSE(queue.isCurrent());
}

} // namespace Ostrel
