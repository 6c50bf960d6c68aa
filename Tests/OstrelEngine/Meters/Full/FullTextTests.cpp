#include "Meters/Full/FullMeterFixture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace Ostrel {

namespace {

/// Doubles each "0", so that a test sees what it is given.
class NoughtRule final : public TextRule {
public:
    std::string apply(std::string_view text) const override {
        std::string result;
        for (const char c : text)
            result += c == '0' ? std::string("OO") : std::string(1, c);
        return result;
    }
};

struct Formatting {
    std::vector<MeasureValue> values;
    OptionPairs options;
    const char* shown;
};

TEST(FullText, formatsNumbersAndFillsPlaces) {
    FullMeterWorkshop workshop;
    const auto number = numberValue;
    MeasureValue ruled = number(1000);
    ruled.textRule = std::make_shared<NoughtRule>();
    MeasureValue percent{30, "", false, 10, 50};
    const Formatting rows[] = {
        {{number(2.5)}, {}, "3"},
        {{number(-2.5)}, {}, "-3"},
        {{number(-0.4)}, {}, "0"},
        {{number(0.125)}, {{"NumOfDecimals", "2"}}, "0.13"},
        {{number(1234567)}, {}, "1234567"},
        {{textValue("2.50")}, {{"NumOfDecimals", "0"}, {"Percentual", "1"}}, "2.50"},
        {{percent}, {{"Percentual", "1"}, {"AutoScale", "1"}}, "50"},
        {{percent}, {{"Percentual", "1"}, {"NumOfDecimals", "1"}, {"Postfix", "%"}}, "50.0%"},
        {{number(3000)}, {{"Scale", "1000"}}, "3"},
        {{number(3000)}, {{"Scale", "1000.0"}}, "3.0"},
        {{number(3000)}, {{"Scale", "(2*1000.0)"}, {"NumOfDecimals", "2"}}, "1.50"},
        {{number(3000)}, {{"Scale", "0"}}, "3000"},
        {{number(512)}, {{"AutoScale", "1"}, {"Text", "%1B"}}, "512.0 B"},
        {{number(1536)}, {{"AutoScale", "1"}, {"Text", "%1B"}}, "1.5 kB"},
        {{number(1536000)}, {{"AutoScale", "2"}, {"NumOfDecimals", "2"}}, "1.54 M"},
        {{number(512)}, {{"AutoScale", "1k"}, {"Scale", "100"}}, "0.5 k"},
        {{number(5e15)}, {{"AutoScale", "2k"}}, "5.0 P"},
        {{number(2048)}, {{"AutoScale", "1m"}}, "2.0 k"},
        {{ruled}, {{"NumOfDecimals", "1"}}, "1OOOOOO.OO"},
        {{number(std::numeric_limits<double>::quiet_NaN())}, {}, "0"},
        {{number(1), number(2)}, {{"Text", "%2-%1-%3 %12 %0 100%"}}, "2-1-%3 12 %0 100%"},
        {{textValue("%2"), textValue("#CRLF#")}, {{"Text", "%1 %2"}}, "%2 #CRLF#"},
        {{textValue("b")}, {{"Text", "a#CRLF#%1"}, {"Prefix", "\"< \""}, {"Postfix", "\" >\""}}, "< a\nb >"},
        {{}, {}, ""},
        {{}, {{"Text", "\"  two  \""}}, "two"},
        {{}, {{"Text", "\"  two  \""}, {"TrailingSpaces", "1"}}, "  two  "},
        {{textValue("it's a 2nd")}, {{"StringCase", "Proper"}}, "It's A 2Nd"},
        {{textValue("one. two? THREE")}, {{"InlineSetting", "Case|Sentence"}}, "One. Two? Three"},
        {{textValue("abc abc")}, {{"InlineSetting", "Case|Upper"}, {"InlinePattern", "(b)c"}}, "aBc aBc"},
        {{textValue("abc")}, {{"InlineSetting", "Case|Upper"}, {"InlinePattern", "("}}, "abc"},
    };
    for (const auto& row : rows) {
        const auto meter = workshop.place("String", row.options, row.values);
        EXPECT_EQ(meter->displayedText({}), row.shown);
    }
}

struct Boxed {
    OptionPairs options;
    Size box;
    Point offset;
};

TEST(FullText, takesTheBoxOfItsLines) {
    FullMeterWorkshop workshop;
    const Boxed rows[] = {
        // Points are 4/3 pixels; nothing is added, fractions are dropped.
        {{{"Text", "Hello World"}, {"FontSize", "30"}}, {205, 44}, {0, 0}},
        {{{"Text", "Hello World"}, {"FontSize", "(15*2)"}, {"StringAlign", "CentreCentre"}}, {205, 44}, {102, 22}},
        {{{"Text", "Hello#CRLF#World"}, {"FontSize", "30"}, {"StringAlign", "RightBottom"}}, {103, 89}, {103, 89}},
        {{{"Text", "Hello World   "}, {"FontSize", "30"}}, {205, 44}, {0, 0}},
        {{{"Text", "Hello World"}, {"FontSize", "0"}, {"StringAlign", "LeftCenter"}}, {68, 14}, {0, 7}},
        {{{"Text", ""}}, {0, 14}, {0, 0}},
        {{{"Text", "Hello World"}, {"FontSize", "30"}, {"W", "50"}, {"Padding", "5,1,10,2"}, {"StringAlign", "Right"}},
            {65, 47}, {65, 0}},
        {{{"Text", "Hello World"}, {"FontSize", "30"}, {"W", "50"}, {"ClipString", "1"}}, {50, 44}, {0, 0}},
        {{{"Text", "Hello World"}, {"FontSize", "30"}, {"W", "110"}, {"ClipString", "2"}}, {110, 89}, {0, 0}},
        {{{"Text", "Hello World"}, {"FontSize", "30"}, {"ClipStringW", "150"}, {"ClipString", "2"}}, {103, 89}, {0, 0}},
        {{{"Text", "Hello World"}, {"FontSize", "30"}, {"H", "50"}, {"ClipString", "2"}}, {205, 50}, {0, 0}},
        {{{"Text", "aaa"}, {"InlineSetting", "Size|30"}, {"InlinePattern", "^a"}}, {37, 44}, {0, 0}},
    };
    for (const auto& row : rows) {
        const auto meter = workshop.place("String", row.options);
        EXPECT_EQ(meter->boxSize(), row.box) << row.options.begin()->second;
        EXPECT_EQ(meter->anchorOffset(meter->boxSize()), row.offset);
    }
}

TEST(FullText, toolTipsNameTheirValues) {
    FullMeterWorkshop workshop;
    const std::vector<MeasureValue> values{numberValue(2048), numberValue(0.4), textValue("x")};
    const OptionPairs options = {{"ToolTipText", "%1B, %2#CRLF#%3"}, {"ToolTipTitle", "%3"}, {"ToolTipIcon", "Info"},
        {"ToolTipType", "1"}, {"ToolTipWidth", "(10*20)"}, {"NumOfDecimals", "3"}};
    ToolTip expected{"2 kB, 0 \nx", "x", "Info", true, 200};
    EXPECT_EQ(workshop.place("String", options, values)->toolTip(), expected);
    expected.text = "2048B, 0\nx";
    EXPECT_EQ(workshop.place("Image", options, values)->toolTip(), expected);
    expected.text = "2048B, %2\n%3";
    expected.title = "%3";
    EXPECT_EQ(workshop.place("Rotator", options, values)->toolTip(), expected);
    EXPECT_TRUE(workshop.place("String", {{"ToolTipTitle", "t"}})->toolTip().isEmpty());
    EXPECT_TRUE(workshop.place("String", {{"ToolTipText", "t"}, {"ToolTipHidden", "1"}})->toolTip().isEmpty());
}

TEST(FullText, isDrawnAgainOnlyWhenItsTextOrLookChanged) {
    FullMeterWorkshop workshop;
    const auto meter = workshop.place("String", {{"Text", "%1"}, {"InlineSetting", "Color|FF0000"}}, {numberValue(2)});
    EXPECT_TRUE(meter->updateAppearance({}));
    FullMeterWorkshop::update(*meter, {numberValue(2.2)});
    EXPECT_FALSE(meter->updateAppearance({}));
    meter->setOption("FontColor", "1,2,3");
    FullMeterWorkshop::update(*meter, {numberValue(2.2)});
    EXPECT_TRUE(meter->updateAppearance({}));
    meter->setOption("MouseOverAction", "[]");
    FullMeterWorkshop::update(*meter, {numberValue(2.2)});
    EXPECT_FALSE(meter->updateAppearance({}));
    meter->setOption("InlineSetting", "Color|00FF00");
    FullMeterWorkshop::update(*meter, {numberValue(3)});
    EXPECT_TRUE(meter->updateAppearance({}));
    EXPECT_EQ(meter->displayedText({}), "3");
}

TEST(FullText, boundsWhatHostileOptionsCost) {
    FullMeterWorkshop workshop;
    const auto start = std::chrono::steady_clock::now();
    Options many;
    many.set("Text", std::string(20'000, 'a') + " b");
    for (int i = 1; i < 400; ++i) {
        const auto number = i > 1 ? std::to_string(i) : std::string();
        many.set(
            "InlineSetting" + number, i % 2 ? "GradientColor|0|0,0,0;0|255,255,255;1" : "Shadow|1e9|-1e9|1e9|0,0,0");
        many.set("InlinePattern" + number, i % 3 ? "a" : "x*");
    }
    const OptionPairs hostile[] = {
        {{"Text", "wide"}, {"FontSize", "1000000000"}},
        {{"Text", "wide"}, {"FontSize", "1e9"}, {"W", "-5"}, {"H", "0"}, {"ClipString", "2"}},
        {{"Text", "a b c d"}, {"W", "0"}, {"ClipString", "1"}, {"Angle", "1000000"}},
        {{"Text", "a b c d"}, {"W", "1"}, {"H", "1"}, {"ClipString", "1"}, {"StringAlign", "Center"}},
        {{"Text", "abc"}, {"InlineSetting", "CharacterSpacing|1000000000|-1000000000|1000000000"}},
        {{"Text", "abc"}, {"InlineSetting", "Size|1000000000"}, {"InlinePattern", "(a|b|)*"}},
    };
    std::vector<std::shared_ptr<FullMeter>> meters{workshop.make("String", many)};
    for (const auto& options : hostile)
        meters.push_back(workshop.make("String", optionsOf(options)));
    for (const auto& meter : meters) {
        FullMeterWorkshop::update(*meter, {});
        drawn(*meter, {}, 100, 100);
        const Size box = meter->boxSize();
        EXPECT_TRUE(box.width >= 0 && box.width < 1e8 && box.height >= 0 && box.height < 1e8);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

} // namespace

} // namespace Ostrel
