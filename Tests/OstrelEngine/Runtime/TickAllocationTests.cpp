#include "Support/AllocationCounter.h"
#include "Support/RunningSkin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {
namespace {

std::size_t allocationsOfTicks(RunningSkin& skin, int ticks) {
    const auto before = allocationCount();
    for (int i = 0; i < ticks; ++i) {
        skin.time.advance(skin.runtime->updateIntervalSeconds());
        skin.runtime->performUpdate();
    }
    return allocationCount() - before;
}

constexpr const char* Steady = "[Rainmeter]\n[Variables]\nLimit=50\n"
                               "[Load]\nMeasure=Calc\nFormula=CLAMP(25*2,0,100)\nAverageSize=4\n"
                               "[Text]\nMeasure=String\nString=a rather long text with the load of [Load:%]% in it\n"
                               "[Off]\nMeasure=Calc\nFormula=1\nDisabled=(Load=#Limit#) and not (Text <> 0)\n"
                               "[Stub]\nMeasure=Registry\nUpdateDivider=2\nDisabled=Load > 99 ? 1 : 0\n"
                               "[A]\nMeter=Bar\nMeasureName=Load\n";

TEST(TickAllocationTests, anIdleTickAllocatesNothing) {
    RunningSkin skin(Steady);
    skin.runtime->start();
    allocationsOfTicks(skin, 10);
    EXPECT_EQ(skin.number("Load"), 50);
    EXPECT_EQ(skin.number("Off"), 0);
    EXPECT_EQ(allocationsOfTicks(skin, 100), 0u);
}

TEST(TickAllocationTests, aPublicationOfTheSameMetersAllocatesNothing) {
    RunningSkin skin(std::string(Steady) + "[Count]\nMeasure=Calc\nFormula=1-Count\n");
    skin.host.onPublish = [&](const auto&) { ++skin.published; };
    skin.runtime->start();
    allocationsOfTicks(skin, 10);
    const int before = skin.published;
    EXPECT_EQ(allocationsOfTicks(skin, 100), 0u);
    EXPECT_EQ(skin.published, before + 100);
}

} // namespace
} // namespace Ostrel
