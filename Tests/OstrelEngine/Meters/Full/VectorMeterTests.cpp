#include "OstrelEngine/Meters/Full/FullMeterFixture.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace Ostrel {
namespace {

TEST(FullShape, isSolidOnlyWhereItPaints) {
    FullMeterWorkshop workshop;
    const auto ring = workshop.place("Shape",
        {{"X", "10"}, {"Y", "20"}, {"W", "5"}, {"Padding", "1,2,0,0"}, {"SolidColor", "255,0,0"},
            {"Shape", "Ellipse 20,20,18 | Fill Color 0,0,0,0 | StrokeWidth 4 | Stroke Color 0,0,0,1"},
            {"Shape2", "Rectangle 60,0,10,10 | Fill Color 0,0,0,0 | StrokeWidth 0"}});
    EXPECT_EQ(ring->mouseArea(), FullMeter::MouseArea::OwnPixels);
    EXPECT_TRUE(ring->isSolidAt({11 + 2, 22 + 20})) << "on the stroke, though nearly transparent";
    EXPECT_TRUE(ring->isSolidAt({11 + 38, 22 + 20})) << "outside of the written width";
    EXPECT_FALSE(ring->isSolidAt({11 + 20, 22 + 20})) << "in the hole, though the box has a background";
    EXPECT_FALSE(ring->isSolidAt({11 + 65, 22 + 5})) << "on a transparent shape";
}

TEST(FullShape, findsItsSizeWithStrokesAndTransforms) {
    FullMeterWorkshop workshop;
    const auto sizeOf = [&](const char* shape) { return workshop.place("Shape", {{"Shape", shape}})->boxSize(); };
    EXPECT_EQ(sizeOf("Rectangle 0,0,100,50 | StrokeWidth 0"), (Size{100, 50}));
    EXPECT_EQ(sizeOf("Rectangle 10,0,100,50 | StrokeWidth 4"), (Size{112, 52}));
    EXPECT_EQ(sizeOf("Rectangle 0,0,100,50 | StrokeWidth 0 | Rotate 90"), (Size{75, 75}));
    EXPECT_EQ(sizeOf("Rectangle 0,0,100,49.9"), (Size{100, 50})) << "whole pixels, half a stroke is dropped";
    EXPECT_EQ(sizeOf("Rectangle -50,-50,10,10"), (Size{0, 0}));
    EXPECT_EQ(sizeOf("Rectangle 0,0"), (Size{0, 0}));
}

TEST(FullGraph, keepsInItsRingWhatItWouldDrawAnew) {
    FullMeterWorkshop workshop;
    const std::vector<std::vector<std::pair<const char*, const char*>>> looks
        = {{}, {{"LineWidth", "5"}, {"AntiAlias", "1"}}, {{"GraphStart", "Left"}, {"LineWidth", "2"}},
            {{"GraphOrientation", "Horizontal"}, {"Flip", "1"}, {"AntiAlias", "1"}}};
    for (const char* type : {"Line", "Histogram"}) {
        for (const auto& look : looks) {
            Options options = optionsOf({{"W", "37"}, {"H", "29"}, {"MeasureName", "A"}, {"MeasureName2", "B"},
                {"LineCount", "2"}, {"LineColor2", "255,0,0,120"}});
            for (const auto& [key, value] : look)
                options.set(key, value);
            const auto kept = workshop.make(type, options);
            const auto anew = workshop.make(type, options);
            for (int i = 0; i < 90; ++i) {
                const std::vector values{numberValue(50 + 50 * std::sin(i)), numberValue(i * 7 % 101)};
                FullMeterWorkshop::update(*kept, values);
                FullMeterWorkshop::update(*anew, values);
                if (i % 3 != 1)
                    drawn(*kept, {}, 37, 29, 2);
            }
            EXPECT_EQ(drawn(*kept, {}, 37, 29, 2), drawn(*anew, {}, 37, 29, 2)) << type;
        }
    }
}

TEST(FullRoundline, looksTheSameUntilTheValueChanges) {
    FullMeterWorkshop workshop;
    const auto hand = workshop.place("Roundline",
        {{"W", "40"}, {"H", "40"}, {"LineLength", "20"}, {"MeasureName", "M"}, {"ValueRemainder", "60"}},
        {numberValue(15)});
    EXPECT_TRUE(hand->updateAppearance({}));
    FullMeterWorkshop::update(*hand, {numberValue(75)});
    EXPECT_FALSE(hand->updateAppearance({})) << "the same minute of another hour";
    FullMeterWorkshop::update(*hand, {numberValue(16)});
    EXPECT_TRUE(hand->updateAppearance({}));
}

TEST(FullBar, uncoversItsPictureBetweenBordersThatAlwaysShow) {
    const TemporaryFolder folder;
    QImage picture(6, 20, QImage::Format_ARGB32);
    picture.fill(Qt::red);
    const std::string path = folder.path() + "/bar.png";
    ASSERT_TRUE(picture.save(QString::fromStdString(path)));
    FullMeterWorkshop workshop;
    const auto bar = workshop.place("Bar",
        {{"W", "99"}, {"H", "99"}, {"BarImage", path.c_str()}, {"BarBorder", "2"}, {"MeasureName", "M"}},
        {numberValue(50)});
    EXPECT_EQ(bar->boxSize(), (Size{6, 20}));
    const QImage half = drawn(*bar, {}, 10, 25);
    std::string column;
    for (int y = 0; y < 21; ++y)
        column += qAlpha(half.pixel(3, y)) ? '#' : '.';
    EXPECT_EQ(column, "##........##########.");
}

/// One meter of the type, updated and drawn at two sizes of pixels; a minute would be for ever, a second is a lot.
void expectQuick(const char* type, const Options& options) {
    FullMeterWorkshop workshop;
    const auto begin = std::chrono::steady_clock::now();
    const auto meter = workshop.make(type, options);
    for (const double value : {0.0, 1e300, -5.0, std::numeric_limits<double>::quiet_NaN(), 50.0}) {
        FullMeterWorkshop::update(*meter, {numberValue(value), numberValue(-value)});
        meter->updateAppearance({});
        meter->paintRect({});
        drawn(*meter, {}, 100, 80, 1);
    }
    meter->isSolidAt({50, 40});
    const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - begin;
    EXPECT_LT(spent.count(), 3) << type;
}

TEST(HostileMeters, takeAnyNumberInAnyOption) {
    const std::vector<std::pair<const char*, std::vector<const char*>>> types = {
        {"Bar", {"W", "H", "BarBorder", "Padding", "GradientAngle", "TransformationMatrix"}},
        {"Roundline",
            {"W", "H", "StartAngle", "RotationAngle", "LineStart", "LineLength", "LineWidth", "LengthShift",
                "ValueRemainder"}},
        {"Line", {"W", "H", "LineCount", "LineWidth", "Scale", "Padding"}},
        {"Histogram", {"W", "H", "Padding", "TransformationMatrix"}},
    };
    for (const auto& [type, keys] : types) {
        for (const char* key : keys) {
            for (const char* value : {"0", "-7", "1e9", "1000000000", "-1000000000", "(1/0)", "(0/0)", "nan",
                     "1000000000,1000000000,1000000000,1000000000", "1e9;0;0;1e9;0;0",
                     "1000000000;0;0;1000000000;0;0"}) {
                Options options = optionsOf({{"W", "60"}, {"H", "50"}, {"MeasureName", "M"}, {"MeasureName2", "N"},
                    {"SolidColor", "255,0,0"}, {"SolidColor2", "0,0,255"}, {"ControlLength", "1"}, {"LineCount", "2"}});
                options.set(key, value);
                expectQuick(type, options);
            }
        }
    }
    for (const char* shape :
        {"Rectangle 0,0,%,%", "Rectangle %,%,10,10,%", "Ellipse %,0,%,5", "Line 0,0,%,7 | StrokeDashes 1,1",
            "Line 0,0,50,50 | StrokeWidth %", "Arc 0,0,50,50,%,%,%", "Arc 0,0,50,50,0,0", "Curve 0,0,9,9,%,%",
            "Rectangle 0,0,20,20 | Scale %,%", "Rectangle 0,0,20,20 | Skew 90,%", "Rectangle 0,0,20,20 | Rotate %",
            "Ellipse 9,9,9 | StrokeDashes 0,0 | StrokeDashOffset %", "Ellipse 9,9,9 | StrokeDashes 0.000001,0.000001",
            "Ellipse 50,40,30 | Fill RadialGradient G"}) {
        for (const std::string value : {"0", "-7", "1000000000", "-1000000000", "(1/0)"}) {
            std::string text = shape;
            for (std::size_t at = text.find('%'); at != std::string::npos; at = text.find('%'))
                text.replace(at, 1, value);
            expectQuick("Shape",
                optionsOf({{"Shape", text.c_str()},
                    {"G",
                        (value + "," + value + "," + value + ",0,0," + value + " | 255,0,0 ; 0 | 0,0,255 ; 1")
                            .c_str()}}));
        }
    }
}

TEST(HostileMeters, readPathsAndCombinationsWithinBounds) {
    std::string path = "0,0";
    for (int i = 0; i < 1'000'000; ++i)
        path += i % 2 ? "|LineTo 9,9" : "|LineTo 1,50";
    expectQuick("Shape", optionsOf({{"Shape", "Path P"}, {"P", path.c_str()}}));

    // Every line of one star crosses all of the other.
    const auto star = [](int points, double turn) {
        std::string text;
        for (int i = 0; i < points; ++i) {
            const double angle = i * 3.0 + turn;
            text += (i ? " | LineTo " : "") + std::to_string(50 + 40 * std::cos(angle)) + ","
                + std::to_string(40 + 40 * std::sin(angle));
        }
        return text + " | ClosePath 1";
    };
    Options stars = optionsOf({{"Shape", "Path A"}, {"Shape2", "Path B"}});
    stars.set("A", star(190, 0));
    stars.set("B", star(190, 0.01));
    for (int i = 3; i < 40; ++i)
        stars.set("Shape" + std::to_string(i), "Combine Shape | XOR Shape2");
    expectQuick("Shape", stars);

    expectQuick("Shape",
        optionsOf({{"Shape", "Combine Shape2 | Union Shape"}, {"Shape2", "Combine Shape | Union Shape2"},
            {"Shape3", "Combine Shape3 | Union Shape3"}}));
    Options chain;
    for (int i = 2; i < 20000; ++i)
        chain.set("Shape" + std::to_string(i),
            "Combine Shape" + std::to_string(i + 1) + " | Union Shape" + std::to_string(i + 1));
    chain.set("Shape20000", "Rectangle 0,0,9,9");
    expectQuick("Shape", chain);
}

TEST(HostileMeters, drawContainersInARing) {
    FullMeterWorkshop workshop;
    const auto a = workshop.place("Bar", {{"W", "20"}, {"H", "20"}, {"SolidColor", "255,0,0,128"}});
    const auto b = workshop.place("Bar", {{"W", "10"}, {"H", "20"}, {"SolidColor", "0,0,255"}});
    a->setContainer(b);
    b->setContainer(a);
    EXPECT_EQ(inkOf(drawn(*a, {}, 30, 30)), QRect(0, 0, 10, 20));
    EXPECT_EQ(qAlpha(drawn(*b, {}, 30, 30).pixel(5, 5)), 128);
    a->setContainer(a);
    EXPECT_EQ(inkOf(drawn(*a, {}, 30, 30)), QRect(0, 0, 20, 20));
}

} // namespace
} // namespace Ostrel
