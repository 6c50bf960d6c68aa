#include "OstrelEngine/Meters/MeterProtocol.h"
#include "OstrelEngine/Meters/StringOptions.h"

#include "Meters/MeterFixture.h"

#include <gtest/gtest.h>

namespace Ostrel {

TEST(StringOptions, readsTheHorizontalHalfOfAnAlignment) {
    using enum HorizontalAlignment;
    const std::pair<const char*, HorizontalAlignment> rows[] = {
        {"", left},
        {"Left", left},
        {"LeftCenter", left},
        {"middle", left},
        {"right", right},
        {"RightCenter", right},
        {" Right Bottom", right},
        {"CENTER", center},
        {"CenterBottom", center},
        {"xCenter Center", center},
    };
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(StringOptionParsers::alignment(text), expected) << text;
    EXPECT_EQ(StringOptionParsers::alignment(std::nullopt), left);
}

TEST(StringOptions, readsWeightsAsNumbersThenAsWords) {
    const auto weight = [](const char* fontWeight, const char* style = "") {
        return StringOptionParsers::fontWeight(fontWeight, style);
    };
    const std::pair<const char*, int> rows[] = {
        {"0", 100},
        {"149.9", 100},
        {"150", 200},
        {"250", 300},
        {"400", 400},
        {"\"700\"", 700},
        {"850", 900},
        {"-1", 100},
        {"thin", 200},
        {"Ultra Light", 100},
        {"ExtraLight", 300},
        {"Medium", 500},
        {"DemiBold", 600},
        {"Bold", 700},
        {"ExtraBold", 700},
        {"Black", 900},
        {"heavy", 800},
        {"BlackHeavy", 900},
        {"700px", 400},
    };
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(weight(text), expected) << text;
    EXPECT_EQ(weight("what", "Bold Italic"), 700) << "the style's words come second";
    EXPECT_EQ(weight("300", "Bold"), 300);
    EXPECT_EQ(StringOptionParsers::fontWeight(std::nullopt, "SemiLight"), 300);
}

TEST(StringOptions, readsCharacterSpacing) {
    using StringOptionParsers::characterSpacingKerning;
    EXPECT_DOUBLE_EQ(*characterSpacingKerning("CharacterSpacing | 3 | 0"), 4);
    EXPECT_DOUBLE_EQ(*characterSpacingKerning("characterspacing|*|1.5|99"), 2);
    EXPECT_DOUBLE_EQ(*characterSpacingKerning("CharacterSpacing | -3"), -4);
    for (const auto* none : {"CharacterSpacing", "CharacterSpacing|*|*", "CharacterSpacing|x", "CharacterSpacing|3|x",
             "CharacterSpacing|1|-1", "Spacing|3", "CharacterSpacing|0.00001"})
        EXPECT_FALSE(characterSpacingKerning(none)) << none;
}

TEST(StringOptions, walksInlineSettingsUpToTheFirstGap) {
    const auto options = StringOptions::parse(optionsOf({
        {"InlineSetting", "Color | 255,0,0"},
        {"InlineSetting2", " CharacterSpacing | 3"},
        {"InlineSetting3", "CharacterSpacing | 9"},
        {"InlinePattern3", "narrow"},
        {"InlineSetting4", "Shadow | 2 | x | 4 | 0,0,255"},
        {"InlineSetting5", "Case | Upper"},
        {"InlineSetting6", "Size | 30"},
        {"InlineSetting8", "Underline"},
    }));
    EXPECT_EQ(options.look.color, (Color{1, 0, 0, 1}));
    EXPECT_DOUBLE_EQ(options.kerning, 4) << "a setting for a part of the text does not count";
    EXPECT_EQ(options.look.shadow, (TextShadow{2, 1, 4, {0, 0, 1, 1}}));
    EXPECT_EQ(options.stringCase, "Upper");
    EXPECT_FALSE(options.look.isUnderlined) << "behind the gap";
}

TEST(StringOptions, letsInlineStylingReplaceWhatTheOptionsSay) {
    const auto options = StringOptions::parse(optionsOf({{"StringEffect", "shadow"}, {"FontColor", "0,255,0"},
        {"StringCase", " lower "}, {"InlineSetting", "Shadow|2|3|4"}, {"InlineSetting2", "Case|Upper"},
        {"InlineSetting3", "Color|0,0,0"}, {"InlineSetting4", "Color|what"}}));
    EXPECT_EQ(options.look.shadow, (TextShadow{2, 3, 4, {0, 0, 0, 0.5}}));
    EXPECT_EQ(options.stringCase, "lower") << "but its own case is first";
    EXPECT_EQ(options.look.color, (Color{0, 1, 0, 1})) << "an unreadable color takes the earlier one back";
}

TEST(StringOptions, readsFontAndEffect) {
    const auto options = StringOptions::parse(
        optionsOf({{"FontFace", "\"Inter\""}, {"FontSize", "-3"}, {"StringStyle", "bolditalic"}, {"ClipString", "2"},
            {"StringEffect", "Border"}, {"AntiAlias", "0"}, {"Text", "\"a\""}, {"W", "(4*5)"}, {"FontColor", "x"}}));
    EXPECT_EQ(options.font, (FontLookup::Request{"Inter", 700, true, true}));
    EXPECT_EQ(options.fontSize, 12) << "not above 0";
    EXPECT_TRUE(options.clips);
    EXPECT_EQ(options.look.outlineColor, (Color{0, 0, 0, 1}));
    EXPECT_FALSE(options.look.shadow);
    EXPECT_FALSE(options.look.antiAlias);
    EXPECT_EQ(options.textTemplate, "a");
    EXPECT_EQ(options.width, 20);
    EXPECT_EQ(options.look.color, (Color{1, 1, 1, 1}));

    const auto defaults = StringOptions::parse(optionsOf({{"StringEffect", "Shadow"}, {"ClipString", "x"}}));
    EXPECT_EQ(defaults.look.shadow, (TextShadow{1, 1, 1, {0, 0, 0, 0.5}}));
    EXPECT_FALSE(defaults.clips);
    EXPECT_FALSE(defaults.textTemplate);
}

} // namespace Ostrel
