#include "OstrelPlatform/Linux/Time/QtMainQueue.h"

#include "OstrelPlatform/HostStatistics.h"
#include "Support/EventLoop.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace Ostrel {
namespace {

class CountedStatistics final : public HostStatistics {
public:
    int wakes = 0;

    void beginWake() override { ++wakes; }
    std::optional<CPUTicks> cpuTicks() override { return {}; }
    std::optional<MemoryFigures> physicalMemory() override { return {}; }
    std::optional<MemoryFigures> swap() override { return {}; }
    std::optional<FileSystemFigures> fileSystem(const std::string&) override { return {}; }
    std::optional<NetworkBytes> networkBytes() override { return {}; }
    const std::vector<ProcessorTimes>& processors() override { return none_; }

private:
    std::vector<ProcessorTimes> none_;
};

class QtMainQueueTest : public testing::Test {
protected:
    CountedStatistics statistics;
    std::unique_ptr<QtMainQueue> queue = std::make_unique<QtMainQueue>(statistics);
    std::string log;
};

TEST_F(QtMainQueueTest, runsWhatIsPostedLaterInOrderOnTheMainThread) {
    queue->post([this] {
        log += "1";
        queue->post([this] { log += "4"; });
    });
    queue->post([this] { log += "2"; });
    std::thread([this] {
        EXPECT_FALSE(queue->isMainThread());
        queue->post([this] { log += queue->isMainThread() ? "3" : "wrong thread"; });
    }).join();
    EXPECT_EQ(log, "");
    EXPECT_TRUE(runLoopUntil([this] { return log.size() >= 4; }));
    EXPECT_EQ(log, "1234");
}

TEST_F(QtMainQueueTest, delaysFromAnyThreadAndNeverRunsEarly) {
    const auto start = std::chrono::steady_clock::now();
    std::chrono::duration<double> waited{};
    std::thread([&] { queue->postAfter(0.02, [&] { waited = std::chrono::steady_clock::now() - start; }); }).join();
    queue->postAfter(0.001, [this] { log += "first"; });
    queue->postAfter(-1, [this] { log += "at once "; });
    EXPECT_TRUE(runLoopUntil([&] { return waited.count() > 0; }));
    EXPECT_GE(waited.count(), 0.02);
    EXPECT_EQ(log, "at once first");
}

TEST_F(QtMainQueueTest, dropsWhatIsQueuedWhenItEnds) {
    queue->post([this] { log += "posted"; });
    queue->postAfter(0, [this] { log += "delayed"; });
    const auto timer = queue->startRepeating(0.001, [this] { log += "fired"; });
    queue.reset();
    queue = std::make_unique<QtMainQueue>(statistics);
    bool reached = false;
    queue->postAfter(0.005, [&] { reached = true; });
    EXPECT_TRUE(runLoopUntil([&] { return reached; }));
    EXPECT_EQ(log, "");
}

TEST_F(QtMainQueueTest, samplesTheHostOnceForAllTimersOfAWake) {
    std::vector<std::unique_ptr<RepeatingTimer>> timers;
    for (int i = 0; i < 5; ++i)
        timers.push_back(queue->startRepeating(0.005, [this] { log += std::to_string(statistics.wakes); }));
    EXPECT_TRUE(runLoopUntil([this] { return log.size() >= 15; }));
    EXPECT_EQ(log, "111112222233333");
    timers.clear();
    bool reached = false;
    queue->postAfter(0.02, [&] { reached = true; });
    EXPECT_TRUE(runLoopUntil([&] { return reached; }));
    EXPECT_EQ(log.size(), 15u);
}

} // namespace
} // namespace Ostrel
