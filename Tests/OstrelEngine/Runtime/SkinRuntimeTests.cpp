#include "OstrelEngine/Runtime/SkinRuntime.h"

#include "Support/RunningSkin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace Ostrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A skin whose measure `Count` grows by one with each of its updates.
std::string countingSkin(const std::string& rainmeter, const std::string& options) {
    return "[Rainmeter]\n" + rainmeter + "\n[Count]\nMeasure=Calc\nFormula=Count+1\n" + options + "\n";
}

TEST(SkinRuntimeTests, ticksOnItsTimerUntilItIsStopped) {
    RunningSkin skin(countingSkin("Update=250", ""));
    EXPECT_EQ(skin.runtime->updateIntervalSeconds(), 0.25);
    EXPECT_EQ(skin.number("Count"), 0);
    skin.runtime->start();
    EXPECT_EQ(skin.number("Count"), 1);
    skin.tick(3);
    EXPECT_EQ(skin.runtime->tickCount(), 4);
    EXPECT_EQ(skin.number("Count"), 4);

    skin.runtime->stop();
    skin.tick(3);
    EXPECT_EQ(skin.number("Count"), 4);

    skin.runtime->start();
    EXPECT_EQ(skin.runtime->tickCount(), 1);
    skin.runtime->start();
    skin.tick();
    EXPECT_EQ(skin.number("Count"), 7) << "a second start must end the first timer";
}

TEST(SkinRuntimeTests, takesASecondForAnIntervalThatIsNone) {
    for (const char* update : {"Update=0", "Update=-1", ""})
        EXPECT_EQ(RunningSkin(countingSkin(update, "")).runtime->updateIntervalSeconds(), 1.0) << update;
    EXPECT_EQ(RunningSkin(countingSkin("Update=16", "")).runtime->updateIntervalSeconds(), 0.016);
}

TEST(SkinRuntimeTests, leavesNoTimerBehind) {
    auto skin = std::make_unique<RunningSkin>(countingSkin("", ""));
    skin->runtime->start();
    const std::weak_ptr<SkinRuntime> runtime = skin->runtime;
    skin->runtime.reset();
    EXPECT_TRUE(runtime.expired());
    skin->time.runFor(5);
}

TEST(SkinRuntimeTests, updatesMeasuresWhenTheyAreDue) {
    struct Case {
        const char* options;
        double after12Ticks;
    };
    for (const auto& [options, expected] : std::vector<Case>{
             {"", 12},
             {"UpdateDivider=5", 3},
             {"UpdateDivider=-1", 1},
             {"UpdateDivider=0", 12},
             {"Disabled=1", 0},
             {"Disabled=0", 12},
             {"Disabled=yes", 12},
             {"Disabled=Count>=4", 4},
             {"Disabled=(#Limit#<=Count)", 2},
         }) {
        RunningSkin skin(countingSkin("", options) + "[Variables]\nLimit=2\n");
        skin.runtime->start();
        skin.tick(11);
        EXPECT_EQ(skin.number("Count"), expected) << options;
    }
}

TEST(SkinRuntimeTests, updatesInFileOrder) {
    RunningSkin skin("[Rainmeter]\n[Before]\nMeasure=Calc\nFormula=Count\n[Count]\nMeasure=Calc\nFormula=Count+1\n"
                     "[After]\nMeasure=Calc\nFormula=Count\n");
    skin.runtime->start();
    skin.tick();
    EXPECT_EQ(skin.number("before"), 1);
    EXPECT_EQ(skin.number("AFTER"), 2);
}

TEST(SkinRuntimeTests, publishesOnlyWhatChangedAndNotTooOften) {
    RunningSkin idle("[Rainmeter]\n[Constant]\nMeasure=Calc\nFormula=5\n[A]\nMeter=Roundline\n");
    idle.runtime->start();
    idle.tick(10);
    EXPECT_EQ(idle.published, 1);

    RunningSkin quick(countingSkin("Update=10", ""));
    quick.runtime->start();
    quick.tick(10);
    // Every tick changes something; each 1/60 s lets one of two through, beginning with the start.
    EXPECT_EQ(quick.published, 6);
    quick.time.advance(1);
    EXPECT_EQ(quick.published, 6);

    // The change of tick 2 comes too early and is shown with tick 3, which changes nothing itself.
    RunningSkin late(countingSkin("Update=10", "UpdateDivider=2"));
    late.runtime->start();
    late.tick();
    EXPECT_EQ(late.published, 1);
    late.tick();
    EXPECT_EQ(late.published, 2);
}

TEST(SkinRuntimeTests, publishesShownMetersWithTheirValues) {
    RunningSkin skin(
        "[Rainmeter]\n[Variables]\nOff=0\n[One]\nMeasure=Calc\nFormula=1\n[Two]\nMeasure=Calc\nFormula=2\n"
        "[Shown]\nMeter=Roundline\nMeasureName=two\nMeasureName2=None\nMeasureName3=One\nMeasureName5=One\n"
        "[Hidden]\nMeter=Roundline\nHidden=1\n[Expression]\nMeter=Roundline\nHidden=(2>1)\n"
        "[Off]\nMeter=Roundline\nHidden=#Off#\n");
    std::vector<double> numbers;
    skin.host.onPublish = [&](const std::vector<Drawable>& drawables) {
        skin.shown.clear();
        for (const auto& drawable : drawables) {
            skin.shown.push_back(drawable.meter->name());
            for (const auto& value : drawable.values)
                numbers.push_back(value.numericValue);
        }
    };
    skin.runtime->start();
    EXPECT_THAT(skin.shown, ElementsAre("Shown", "Off"));
    EXPECT_THAT(numbers, ElementsAre(2, 1));
    EXPECT_FALSE(skin.runtime->isMeterVisible("HIDDEN"));
    EXPECT_TRUE(skin.runtime->isMeterVisible("no such meter"));
}

TEST(SkinRuntimeTests, bindsImagesToTheMeasuresInTheirNames) {
    const RunningSkin skin("[Rainmeter]\n[Count]\nMeasure=Calc\nFormula=1\n"
                           "[A]\nMeter=Roundline\nImageName=a[Count][!x][#y][None].png\n"
                           "[B]\nMeter=Roundline\nMeasureName2=Count\nImageName=[None]\n");
    const auto values = skin.runtime->boundValues(*skin.runtime->meters()[0]);
    ASSERT_EQ(values.size(), 2u);
    EXPECT_FALSE(values[0].preferStringValue);
    EXPECT_TRUE(values[1].preferStringValue);
    EXPECT_EQ(skin.runtime->boundValues(*skin.runtime->meters()[1]).size(), 1u);
}

TEST(SkinRuntimeTests, bindsAgainWhenAnOptionChanges) {
    RunningSkin skin("[Rainmeter]\n[One]\nMeasure=Calc\nFormula=1\n[Two]\nMeasure=Calc\nFormula=2\n"
                     "[A]\nMeter=Roundline\nMeasureName=One\n");
    skin.runtime->start();
    auto& meter = *skin.runtime->meters()[0];
    EXPECT_EQ(skin.runtime->boundValues(meter).at(0).numericValue, 1);
    meter.setOption("measurename", "Two");
    EXPECT_EQ(skin.runtime->boundValues(meter).at(0).numericValue, 2);
    meter.setOption("MeasureName", "None");
    EXPECT_THAT(skin.runtime->boundValues(meter), IsEmpty());
}

TEST(SkinRuntimeTests, resolvesOptionsOfDynamicShapes) {
    RunningSkin skin(countingSkin("", "")
        + "[A]\nMeter=Shape\nDynamicVariables=1\n"
          "Shape=Rectangle 0,0,[Count],[Count:%] | Fill Color 1,2,3\n"
          "[Static]\nMeter=Shape\nShape=Rectangle 0,0,[Count],5\n");
    const auto width = [&](std::size_t meter) { return skin.runtime->meters()[meter]->interactionRect({}).width; };
    skin.runtime->start();
    skin.tick(6);
    EXPECT_EQ(width(0), 7);
    EXPECT_EQ(width(1), 0);
}

TEST(SkinRuntimeTests, dismissesTheInputFieldWheneverItStops) {
    RunningSkin skin(countingSkin("", ""));
    skin.host.onPrompt = [&] { skin.runtime->stop(); };
    const auto dismissals = [&] { return std::ranges::count(skin.host.log, "dismiss"); };
    skin.runtime->start();
    EXPECT_EQ(dismissals(), 1);
    skin.runtime->stop();
    EXPECT_EQ(dismissals(), 2);
}

TEST(SkinRuntimeTests, publishesFromWithinAPublication) {
    RunningSkin skin("[Rainmeter]\n[A]\nMeter=Roundline\n[B]\nMeter=Roundline\n");
    bool isNested = false;
    skin.host.onPublish = [&](const std::vector<Drawable>& drawables) {
        if (!std::exchange(isNested, true))
            skin.runtime->start();
        EXPECT_EQ(drawables.size(), 2u);
        EXPECT_EQ(drawables[1].meter->name(), "B");
    };
    skin.runtime->start();
}

TEST(SkinRuntimeTests, takesOverAndGivesBackItsState) {
    RunningSkin skin(
        "[Rainmeter]\n[Variables]\nBarWidth=10\nColor=red\n[MeterBar1]\nMeter=Bar\n[B]\nMeter=Roundline\n");
    skin.runtime->start();
    const auto state = skin.runtime->snapshotState();
    EXPECT_EQ(state, (WidgetRuntimeState{{{"BarWidth", "10"}, {"Color", "red"}}, {{"B", true}, {"METERBAR1", true}}}));

    skin.runtime->applyState({{{"color", "blue"}, {"New", "1"}}, {{"b", false}, {"Gone", false}}});
    skin.tick(2);
    EXPECT_EQ(skin.published, 1) << "nothing that was taken over is shown by itself";
    EXPECT_EQ(skin.runtime->snapshotState(),
        (WidgetRuntimeState{
            {{"BarWidth", "10"}, {"Color", "blue"}, {"New", "1"}}, {{"B", false}, {"METERBAR1", true}}}));

    skin.runtime->applyState({{{"barwidth", "30"}}, {}});
    skin.tick();
    EXPECT_EQ(skin.published, 2);
    EXPECT_THAT(skin.shown, ElementsAre("MeterBar1"));
    EXPECT_EQ(skin.frames()[0], "MeterBar1 37 24 30 350");
}

} // namespace
} // namespace Ostrel
