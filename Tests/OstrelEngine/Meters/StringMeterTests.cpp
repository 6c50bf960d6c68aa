#include "OstrelEngine/Meters/StringMeter.h"

#include "Meters/MeterFixture.h"
#include "Support/AllocationCounter.h"

#include <gtest/gtest.h>

namespace Ostrel {

namespace {

/// Meters in DejaVu Sans, whose ascent is 1901 and descent 483 of 2048 units, without leading.
class StringMeterTest : public testing::Test {
protected:
    std::unique_ptr<StringMeter> make(const OptionPairs& pairs, MeterFrame frame = {}) {
        Options options = optionsOf({{"FontFace", "DejaVu Sans"}});
        options.merge(optionsOf(pairs), false);
        auto meter = std::make_unique<StringMeter>(meterOfType("String"), options);
        meter->setFrame(frame);
        return meter;
    }

    /// As the canvas does it: the meter takes the values in, then draws them.
    static std::pair<bool, QImage> publish(StringMeter& meter, MeasureValues values) {
        const bool changed = meter.updateAppearance(values);
        return {changed, drawn(meter, values, 200, 40)};
    }
};

} // namespace

TEST_F(StringMeterTest, measuresTheTextWithPadding) {
    EXPECT_EQ(make({{"Text", ""}})->naturalSize({}, {}), (Size{8, 22}));
    EXPECT_EQ(make({{"Text", ""}, {"FontSize", "100"}})->naturalSize({}, {}), (Size{25, 142}));
    EXPECT_EQ(make({{"Text", ""}, {"FontSize", "33"}})->naturalSize({}, {}), (Size{9, 48})) << "padding rounded up";
    const auto size = make({{"Text", "Value"}})->naturalSize({}, {});
    EXPECT_EQ(size, (Size{41, 22}));
    EXPECT_EQ(make({{"Text", "Value#CRLF#V"}})->naturalSize({}, {}), (Size{size.width, 36}));
    EXPECT_EQ(make({{"Text", "Value#crlf#"}})->naturalSize({}, {}).height, 22) << "in this spelling only";
}

TEST_F(StringMeterTest, measuresNothingButShowsTheValueWithoutAText) {
    const std::vector values = {textValue("a long value")};
    const auto meter = make({}, {10, 0, 0, 0});
    EXPECT_EQ(meter->naturalSize(values, {}), (Size{8, 22}));
    EXPECT_EQ(meter->displayedText(values), "a long value");
    EXPECT_EQ(meter->displayedText({}), "%1");
    const QRect ink = inkOf(drawn(*meter, values, 200, 30));
    EXPECT_FALSE(ink.isEmpty());
    EXPECT_LE(ink.right(), 17) << "cut at the side of the rectangle";
}

TEST_F(StringMeterTest, placesTheTextByItsAnchor) {
    const auto rect = [&](const char* align, const char* w, const char* h, MeterFrame frame) {
        return make({{"Text", "Value"}, {"StringAlign", align}, {"W", w}, {"H", h}}, frame)->interactionRect({});
    };
    EXPECT_EQ(rect("Left", "", "", {100, 5, 30, 30}), (Rect{100, 5, 41, 22})) << "measured, whatever the frame says";
    EXPECT_EQ(rect("Right", "", "", {100, 5, 0, 0}), (Rect{59, 5, 41, 22}));
    EXPECT_EQ(rect("CenterBottom", "", "", {100, 5, 0, 0}), (Rect{79.5, 5, 41, 22}));
    EXPECT_EQ(rect("Center", "200", "", {100, 5, 200, 99}), (Rect{0, 5, 200, 22}));
    EXPECT_EQ(rect("Center", "200", "", {100, 5, 0, 0}), (Rect{0, 5, 200, 22})) << "W where the frame has none";
    EXPECT_EQ(rect("Left", "", "7", {0, 0, 9, 7}), (Rect{0, 0, 41, 7}));
    EXPECT_EQ(rect("Left", "0.5", "", {0, 0, 0, 0}).width, 1);
}

TEST_F(StringMeterTest, wrapsAtItsWidth) {
    const auto height = [&](const char* w) {
        return make({{"Text", "one two three four"}, {"W", w}})->interactionRect({}).height;
    };
    EXPECT_EQ(height("200"), 22);
    EXPECT_EQ(height("70"), 36);
    EXPECT_EQ(height("45"), 64);
    EXPECT_EQ(height("1"), std::ceil(15 * 12 * 2384 / 2048.0) + 8) << "a letter a line";
    const auto meter = make({{"Text", "one two three four"}, {"W", "70"}});
    EXPECT_EQ(meter->naturalSize({}, {}).height, 22) << "the layout asks for one line";
}

TEST_F(StringMeterTest, showsTheTextFormattedCasedAndBroken) {
    const std::vector values = {numberValue(2.5), textValue("b#CRLF#c")};
    EXPECT_EQ(make({{"Text", "\"a %1 %2\""}, {"StringCase", "UPPER"}})->displayedText(values), "A 2.50 B\nC");
    EXPECT_EQ(make({{"Text", "ab"}, {"InlineSetting", "Case|Proper"}})->displayedText({}), "Ab");
}

TEST_F(StringMeterTest, tellsWhenItLooksDifferent) {
    const auto meter = make({{"Text", "%1 %"}}, {0, 0, 0, 0});
    const std::vector first = {numberValue(1)};
    const std::vector almostFirst = {numberValue(1.00001)};
    const std::vector second = {numberValue(2)};
    EXPECT_TRUE(publish(*meter, first).first);
    EXPECT_FALSE(publish(*meter, first).first);
    const auto [changed, image] = publish(*meter, second);
    EXPECT_TRUE(changed);
    EXPECT_NE(image, publish(*meter, first).second);
    meter->setOption("NumOfDecimals", "2");
    EXPECT_TRUE(meter->updateAppearance(first));
    EXPECT_FALSE(meter->updateAppearance(almostFirst)) << "another number, the same text";
    meter->setOption("Group", "G");
    EXPECT_FALSE(meter->updateAppearance(first)) << "an option that changes nothing";
    meter->setOption("FontColor", "255,0,0");
    EXPECT_TRUE(meter->updateAppearance(first));
}

TEST_F(StringMeterTest, noticesAChangeThatTheLayoutSawFirst) {
    const auto meter = make({{"Text", "%1"}});
    const std::vector first = {numberValue(1)};
    const std::vector second = {numberValue(2)};
    meter->updateAppearance(first);
    meter->naturalSize(second, {});
    meter->interactionRect(second);
    EXPECT_TRUE(meter->updateAppearance(second));
}

TEST_F(StringMeterTest, setsTheSameTextOnce) {
    const std::vector values = {textValue("a value that is long enough to be on the heap")};
    for (const auto* clip : {"0", "1"}) {
        const auto meter = make({{"Text", "%1, %1"}, {"W", "90"}, {"ClipString", clip}}, {0, 0, 90, 0});
        const auto ask = [&] {
            meter->naturalSize(values, {});
            meter->interactionRect(values);
            meter->updateAppearance(values);
            meter->paintRect(values);
        };
        ask();
        const auto before = allocationCount();
        ask();
        EXPECT_EQ(allocationCount(), before) << clip;
    }
}

TEST_F(StringMeterTest, followsItsOptions) {
    const auto meter = make({{"Text", "Value"}});
    EXPECT_EQ(meter->naturalSize({}, {}).height, 22);
    meter->setOption("FontSize", "24");
    EXPECT_EQ(meter->naturalSize({}, {}), (Size{74, 36}));
    meter->setOption("InlineSetting", "CharacterSpacing|3");
    EXPECT_EQ(meter->naturalSize({}, {}).width, 94) << "4 points for each of 5 letters";
    meter->setOption("Text", "%1");
    EXPECT_EQ(meter->displayedText(std::vector{numberValue(3)}), "3");
}

TEST_F(StringMeterTest, drawsNoLineThatDoesNotFitItsHeight) {
    const auto ink = [&](const char* h) {
        const auto meter = make({{"Text", "X#CRLF#X#CRLF#X"}, {"H", h}}, {0, 0, 0, std::atof(h)});
        return inkOf(drawn(*meter, {}, 40, 80)).bottom();
    };
    EXPECT_EQ(ink("0"), 38);
    EXPECT_EQ(ink("30"), 24);
    EXPECT_EQ(ink("5"), 10) << "the first line always";
}

TEST_F(StringMeterTest, fillsItsRectangleWithTheSolidColor) {
    const auto meter = make({{"Text", "x"}, {"SolidColor", "0,0,255"}, {"StringAlign", "Right"}}, {50, 10, 0, 0});
    const Rect rect = meter->interactionRect({});
    EXPECT_EQ(inkOf(drawn(*meter, {}, 80, 60)),
        QRect(static_cast<int>(rect.x), 10, static_cast<int>(rect.width), static_cast<int>(rect.height)));
}

TEST_F(StringMeterTest, survivesWhatSkinsMayAskFor) {
    const std::string longText(100'000, 'x');
    for (const auto* size : {"1e9", "inf", "nan", "0.001", "20000"}) {
        const auto meter = make({{"Text", "Wide"}, {"FontSize", size}, {"StringEffect", "Shadow"}, {"W", "1e9"},
            {"InlineSetting", "CharacterSpacing|1e12"}, {"InlineSetting2", "Shadow|1e9|nan|1e9"}});
        meter->setFrame({-1e9, std::nan(""), 1e9, 1e9});
        drawn(*meter, {}, 50, 50);
        EXPECT_GT(meter->naturalSize({}, {}).height, 0) << size;
    }
    for (const auto* clip : {"0", "1"}) {
        const auto meter = make({{"Text", longText.c_str()}, {"W", "100"}, {"ClipString", clip}}, {0, 0, 100, 20});
        drawn(*meter, {}, 50, 50);
    }
    for (const auto* text : {"\xFF\xC3", "\xEF\xBF\xBF",
             "a\xE2\x80\xAE"
             "b\xD7\x90",
             "\xCC\x81\xCC\x81", "[\\x00]\t[\\x1F]"})
        drawn(*make({{"Text", text}, {"W", "3"}}, {0, 0, 3, 90}), {}, 50, 50);
}

} // namespace Ostrel
