#include "Support/ScriptedSkin.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Ostrel {

namespace {

/// Tells what ran at which millisecond; a command may stand for the timer's own.
class TimedSkin : public FakeFullHost {
public:
    Platform ports{fake.queue, fake.queue, fake.host, fake.fonts, fake.network};
    std::vector<std::string> runs;

    const Platform& platform() const override { return ports; }
    void runAction(const BaseMeasure& measure_, std::string_view action) override {
        runs.push_back(std::to_string(std::lround(fake.queue.elapsedSeconds() * 1000)) + " " + std::string(action));
        if (action.starts_with("do "))
            measure(measure_.name())->executeCommand(action.substr(3));
        if (action == "slow")
            fake.queue.advance(0.004);
        if (action == "new")
            measure(measure_.name())->setOption("A", "late");
    }
};

TEST(ActionTimer, ListsKeepTheirTimes) {
    struct Case {
        const char* list;
        std::vector<std::string> runs;
    };
    const Case cases[] = {{"A | wait 100|B||WAIT 50 | C", {"0 a", "100 b", "150 c"}}, {"Wait x | A", {"0 a"}},
        {"Repeat A, 20, 3 | B", {"0 a", "20 a", "40 a", "40 b"}}, {"repeat A,0,3", {"0 a", "1 a", "2 a"}},
        {"Repeat A, 5, 0 | B", {"0 b"}}, {"Repeat A, 10 | B", {"0 b"}}, {"Wait 10 | Repeat A, 10, 2", {"10 a", "20 a"}},
        {"Gone | A", {"0 a"}},
        // No drift from actions that take their time; nothing is skipped.
        {"Slow | Wait 10 | A | Wait 10 | B", {"0 slow", "10 a", "20 b"}},
        // Not more than four milliseconds in one turn.
        {"Slow | Slow | A", {"0 slow", "4 slow", "8 a"}},
        // The text is read when it is due.
        {"New | A | Wait 5 | A", {"0 new", "0 late", "5 late"}}, {"Stop | A", {"0 do Stop 1"}},
        {"Wait 5 | Stop | A", {"5 do Stop 1"}}, {"Again | A", {"0 do Execute 1", "0 a"}}};
    for (const auto& [list, runs] : cases) {
        TimedSkin skin;
        auto& timer = skin.add("T", "Plugin:ActionTimer",
            {{"ActionList1", list}, {"A", "a"}, {"B", "b"}, {"C", "c"}, {"Slow", "slow"}, {"New", "new"},
                {"Stop", "do Stop 1"}, {"Again", "do Execute 1"}});
        timer.executeCommand("Execute 1");
        for (int i = 0; i < 300; ++i)
            skin.fake.queue.runFor(0.001);
        EXPECT_EQ(skin.runs, runs) << list;
    }
}

TEST(ActionTimer, RunsEachListOnceAndStops) {
    TimedSkin skin;
    auto& timer = skin.add("T", "Plugin:ActionTimer",
        {{"ActionList1", "Wait 10 | A"}, {"ActionList2", "Repeat A, 10, 100000"}, {"A", "a"}});
    timer.executeCommand("execute 1");
    timer.executeCommand("Execute 1");
    EXPECT_EQ(skin.lines, std::vector<std::string>{"log T list 1 is running already"});
    timer.setOption("IgnoreWarnings", "1");
    timer.executeCommand("Execute 1");
    EXPECT_EQ(skin.lines.size(), 1U);
    timer.executeCommand("Stop 1");
    timer.executeCommand("Execute 1");
    skin.fake.queue.runFor(1);
    EXPECT_EQ(skin.runs, std::vector<std::string>{"10 a"}) << "a stopped list begins anew";
    timer.executeCommand("Execute 2");
    timer.readAsZero();
    skin.fake.queue.runFor(1);
    EXPECT_EQ(skin.runs.size(), 2U) << "disabling ends all";
    timer.executeCommand("Execute 3");
    EXPECT_EQ(skin.lines.back(), "log T there is no list 3");
    timer.executeCommand("Execute 2");

    EXPECT_EQ(timer.value().numericValue, 0);
}

} // namespace

} // namespace Ostrel
