#include "OstrelEngine/Runtime/LayoutResolver.h"

#include "OstrelEngine/Measures/CalcMeasure.h"
#include "Support/RunningSkin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {
namespace {

using testing::ElementsAre;

struct Case {
    std::string meters;
    std::vector<std::string> frames;
    Size size;
};

/// A placeholder takes no size of its own, so its frame is what the layout makes of its options.
void expectLayouts(const std::vector<Case>& cases) {
    for (const auto& [meters, frames, size] : cases) {
        const RunningSkin skin("[Rainmeter]\n" + meters);
        EXPECT_EQ(skin.frames(), frames) << meters;
        EXPECT_EQ(skin.runtime->widgetSize(), size) << meters;
    }
}

TEST(LayoutResolverTests, placesMetersInAChain) {
    expectLayouts({
        {"", {}, {220, 50}},
        {"DynamicWindowSize=1\n", {}, {100, 50}},
        {"DynamicWindowSize=true\n", {}, {220, 50}},
        {"[A]\nMeter=Roundline\nX=20\nY=30\nW=30\nH=10\n[B]\nMeter=Roundline\nX=10r\nY=-5R\nW=(2*5)\nH=4\n"
         "[C]\nMeter=Roundline\nX=10R\nY=r\nW=1\nH=1\n",
            {"A 20 30 30 10", "B 30 35 10 4", "C 50 35 1 1"}, {220, 64}},
        {"[A]\nMeter=Roundline\nX=5r\nY=5R\n[B]\nMeter=Roundline\nW=9\nH=9\n", {"A 5 24 0 0", "B 0 24 9 9"}, {220, 57}},
        {"[A]\nMeter=Roundline\nX=300\nY=100\nW=50\nH=20\n[B]\nMeter=Roundline\nX=#No#\nY=word\nH=x\n",
            {"A 300 100 50 20", "B 0 120 0 0"}, {374, 144}},
    });
}

TEST(LayoutResolverTests, keepsContentBelowThePaddingAndRightOfTheEdge) {
    expectLayouts({
        {"[A]\nMeter=Roundline\nY=0\nW=200\nH=100\n", {"A 0 24 200 100"}, {224, 148}},
        {"[A]\nMeter=Roundline\nX=-10\nY=40\nW=300\nH=10\n[B]\nMeter=Roundline\nX=5\nY=60\nW=1\nH=1\n",
            {"A 0 40 300 10", "B 15 60 1 1"}, {324, 85}},
        {"[A]\nMeter=Roundline\nX=50\nY=50\nW=-100\nH=-50\n", {"A 100 74 -100 -50"}, {220, 98}},
        {"[A]\nMeter=Roundline\nX=500\nY=600\nW=nan\nH=nan\n[B]\nMeter=Roundline\nY=30\nW=9\nH=9\n",
            {"A 500 600 nan nan", "B 0 30 9 9"}, {220, 63}},
    });
}

TEST(LayoutResolverTests, readsFramesOfOtherMeters) {
    const std::string text = "[Rainmeter]\n[A]\nMeter=Roundline\nX=10\nY=30\nW=40\nH=5\n"
                             "[B]\nMeter=Roundline\nX=([A:X]+[a:w])\nY=[C:Y]\nW=[A:Z]\nH=[None:H]\n"
                             "[C]\nMeter=Roundline\nY=70\nW=1\nH=1\n";
    RunningSkin skin(text);
    // C stands behind B: at first it has no place yet.
    EXPECT_THAT(skin.frames(), ElementsAre("A 10 54 40 5", "B 50 24 0 0", "C 0 94 1 1"));
    skin.runtime->start();
    EXPECT_THAT(skin.frames(), ElementsAre("A 10 30 40 5", "B 50 94 0 0", "C 0 70 1 1"));
}

TEST(LayoutResolverTests, takesTheSizeOfShapes) {
    expectLayouts({
        {"[A]\nMeter=Shape\nX=10\nY=30\nShape=Rectangle 5,5,100,50\nShape3=Ellipse 100,2,100,2\n", {"A 10 30 200 55"},
            {234, 109}},
        {"[A]\nMeter=Shape\nX=10\nY=30\nW=7\nShape=Rectangle 5,5,100,50\n", {"A 10 30 7 55"}, {220, 109}},
    });
}

TEST(LayoutResolverTests, placesBarsWithoutGeometry) {
    const std::string bars = "[MeterBar3]\nMeter=Bar\n[metershadowbar3]\nMeter=Bar\n[MeterBarX]\nMeter=Bar\n"
                             "[MeterBar4]\nMeter=Bar\nW=5\n[MeterBar+1]\nMeter=Bar\n[MeterBar2]\nMeter=Roundline\n";
    const RunningSkin skin("[Rainmeter]\n" + bars);
    EXPECT_THAT(skin.frames(),
        ElementsAre("MeterBar3 75 24 18 350", "metershadowbar3 79 28 18 354", "MeterBarX 0 382 0 0",
            "MeterBar4 0 382 5 0", "MeterBar+1 25 24 18 350", "MeterBar2 0 374 0 0"));
    EXPECT_EQ(option(skin.runtime->meters()[0]->options(), "BarOrientation"_key), "Vertical");
    EXPECT_EQ(option(skin.runtime->meters()[3]->options(), "BarOrientation"_key), std::nullopt);

    const RunningSkin scaled("[Rainmeter]\n[Variables]\nScaleVisualizer=0\nBarWidth=2*600\nBarHeight=#H#\nH=90\n"
                             "BarGap=x\n[MeterBar10]\nMeter=Bar\n");
    EXPECT_THAT(scaled.frames(), ElementsAre("MeterBar10 120 24 12 90"));
}

TEST(LayoutResolverTests, knowsWhichChangesMoveMeters) {
    for (const char* key : {" x ", "W", "stringalign", "Text", "ImageName", "Shape", "SHAPE12", "TransformationMatrix"})
        EXPECT_TRUE(LayoutResolver::shouldMeterOptionTriggerLayout(key)) << key;
    for (const char* key : {"", "SolidColor", "FontColor", "XX", "Hidden"})
        EXPECT_FALSE(LayoutResolver::shouldMeterOptionTriggerLayout(key)) << key;

    const RunningSkin skin("[Rainmeter]\n[A]\nMeter=Roundline\nX=(#unset#)\nSolidColor=#Foo#\nText=#größe#\n");
    MeterTable meters;
    for (const auto& meter : skin.runtime->meters())
        meters.add(meter, true);
    MeasureTable measures;
    const Options variables;
    RuntimeExpressions expressions(variables, measures);
    MeterBindings bindings(meters, measures);
    const LayoutResolver layout(meters, bindings, expressions, variables, LayoutResolver::WindowSize::Fixed);
    for (const char* name : {"UNSET", " unset", "GRÖSSE", "barwidth", "BarGap"})
        EXPECT_TRUE(layout.shouldVariableTriggerLayout(name)) << name;
    for (const char* name : {"", "Foo", "uns", "BarWidths"})
        EXPECT_FALSE(layout.shouldVariableTriggerLayout(name)) << name;
}

} // namespace
} // namespace Ostrel
