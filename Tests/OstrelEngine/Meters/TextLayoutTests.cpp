#include "OstrelEngine/Meters/Text/FontLibrary.h"
#include "OstrelEngine/Meters/Text/TextLayout.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Ostrel {

namespace {

TextSetting settingOf(const char* face, double size) {
    TextSetting setting;
    setting.font.request.name = face;
    setting.font.typeface = FontLibrary::shared().typeface(setting.font.request);
    setting.size = size;
    return setting;
}

/// 10 points a character.
TextSetting mono() {
    return settingOf("DejaVu Sans Mono", 10 * 2048 / 1233.0);
}

double widthOf(std::string_view text, const TextSetting& setting) {
    return TextLayouts::inLines(TextLayouts::preparedText(text), setting, std::nullopt).width();
}

/// Characters of each line, as widths in a font of equal advances tell them.
std::string lengths(const TextLayout& layout) {
    std::string text;
    for (const auto& line : layout.lines)
        text += std::to_string(std::lround(line.width / 10)) + ' ';
    return text;
}

std::string broken(std::string_view text, double width) {
    return lengths(TextLayouts::inLines(TextLayouts::preparedText(text), mono(), width));
}

std::string truncated(std::string_view text, double width, double height) {
    return lengths(TextLayouts::truncated(TextLayouts::preparedText(text), mono(), width, height));
}

} // namespace

TEST(TextLayout, growsInProportionToTheSize) {
    // As another layout engine measures it, in em.
    EXPECT_NEAR(widthOf("CPU 45% AVATAR fi", settingOf("DejaVu Sans", 1000)), 9598.145, 0.2);
    const char* text = "AVATAR office 12:34";
    for (const auto* face : {"DejaVu Sans", "Inter"}) {
        const double width = widthOf(text, settingOf(face, 1000)) / 1000;
        for (const double size : {6.0, 11.5, 12.25, 48.0})
            EXPECT_NEAR(widthOf(text, settingOf(face, size)), width * size, 1e-9 * size) << face << ' ' << size;
    }
}

TEST(TextLayout, kernsAndJoinsLettersUnlessTheyAreSpaced) {
    auto setting = settingOf("DejaVu Sans", 2048);
    EXPECT_LT(widthOf("AV", setting), widthOf("A", setting) + widthOf("V", setting));
    const auto glyphs = [&] { return TextShaper::shape(u"ffi", setting, TextDirection::leftToRight).glyphs.size(); };
    EXPECT_EQ(glyphs(), 1U);
    setting.spacing = 100;
    EXPECT_EQ(glyphs(), 3U);
    EXPECT_DOUBLE_EQ(widthOf("xxx", setting), 300 + 3 * widthOf("x", settingOf("DejaVu Sans", 2048)));
}

TEST(TextLayout, countsBlanksAtTheEndOfItsOwnLinesOnly) {
    EXPECT_EQ(broken("ab ", 1000), "3 ");
    EXPECT_EQ(broken("ab   cd ", 40), "2 3 ");
}

TEST(TextLayout, breaksBetweenWordsAndWithinThoseThatDoNotFit) {
    EXPECT_EQ(broken("one two three", 70), "7 5 ");
    EXPECT_EQ(broken("one two three", 69), "3 3 5 ");
    EXPECT_EQ(broken("a-b c", 20), "2 1 1 ") << "after a hyphen, too";
    EXPECT_EQ(broken("abcdefgh ij", 30), "3 3 2 2 ");
    EXPECT_EQ(broken("ab c  ", 1), "1 1 1 ") << "blanks at a break take no line";
    EXPECT_EQ(broken("a\r\nb\n\nc\n", 100), "1 1 0 1 0 ");
    EXPECT_EQ(broken("", 10), "0 ");
}

TEST(TextLayout, endsWithAnEllipsisWhereTheTextDoesNotFit) {
    EXPECT_EQ(truncated("abcdef", 60, 10), "6 ");
    EXPECT_EQ(truncated("abcdef", 59, 10), "5 ");
    EXPECT_EQ(truncated("ab cdef", 40, 10), "3 ") << "no blank before the ellipsis";
    EXPECT_EQ(truncated("abc", 1, 10), "1 ") << "an ellipsis at least";
    EXPECT_EQ(truncated("a\nb\nc", 100, 45), "1 2 ") << "the last line that fits tells that more follow";
    const auto line = TextLayouts::truncated(u"abcdef", mono(), 40, 10).lines.front();
    hb_codepoint_t ellipsis = 0;
    hb_font_get_nominal_glyph(mono().font.typeface->shaper(), 0x2026, &ellipsis);
    EXPECT_EQ(line.glyphs.back().glyph, ellipsis);
}

TEST(TextLayout, setsEachScriptInItsDirectionAndFont) {
    const auto setting = settingOf("DejaVu Sans", 20);
    const auto run = [&](std::u16string_view text) {
        return TextRuns::visualRuns(text, setting.font, TextRuns::baseDirection(text));
    };
    const auto hebrew = run(u"ab אב 12");
    ASSERT_EQ(hebrew.size(), 3U);
    EXPECT_EQ(hebrew[1].start, 6U) << "the number stands left of the letters";
    EXPECT_TRUE(hebrew[2].isRightToLeft);
    EXPECT_EQ(TextRuns::baseDirection(u"1 אb"), TextDirection::rightToLeft);
    EXPECT_EQ(run(u"abкд").size(), 2U) << "one script a run";
    EXPECT_EQ(run(u"a, б").front().script, HB_SCRIPT_LATIN);

    // Arabic letters join: the same letter has other forms within a word.
    const auto joined = TextShaper::shape(u"ببب", setting, TextDirection::rightToLeft);
    ASSERT_EQ(joined.glyphs.size(), 3U);
    EXPECT_NE(joined.glyphs[0].glyph, joined.glyphs[1].glyph);
}

TEST(TextLayout, fallsBackByWholeClusters) {
    // The mono face lacks Hebrew points; the sans has both letter and point.
    const auto setting = settingOf("Inter", 20);
    const auto runs = TextRuns::visualRuns(u"aש\u05C1b", setting.font, TextDirection::leftToRight);
    ASSERT_EQ(runs.size(), 3U);
    EXPECT_EQ(runs[1].length, 2U);
    EXPECT_NE(runs[1].typeface, setting.font.typeface);
    EXPECT_TRUE(runs[1].typeface->covers(0x5E9));
    EXPECT_EQ(runs[2].typeface, setting.font.typeface);
    const auto unknown = TextRuns::visualRuns(u"\U000E0FFF\uF8FF", setting.font, TextDirection::leftToRight);
    EXPECT_EQ(unknown.front().typeface, setting.font.typeface) << "no font has it";
}

TEST(TextLayout, takesTheTallestFontOfALine) {
    const auto plain = settingOf("Inter", 100);
    const auto mixed = TextLayouts::inLines(u"aא", plain, std::nullopt).lines.front();
    const auto own = TextLayouts::inLines(u"a", plain, std::nullopt).lines.front();
    EXPECT_NEAR(own.ascent, 96.875, 0.01);
    EXPECT_GE(mixed.ascent, own.ascent);
    EXPECT_GE(mixed.descent, own.descent);
}

TEST(TextLayout, preparesHostileText) {
    EXPECT_EQ(TextLayouts::preparedText("a\tb\x01\x7F\r\nc\xE2\x80\xA8"
                                        "d\xFF"),
        u"a    b\nc\nd\uFFFD");
    EXPECT_EQ(TextLayouts::preparedText("\xF0\x9F\x98\x80"), u"\U0001F600");
    EXPECT_LE(TextLayouts::preparedText(std::string(1'000'000, 'x')).size(), 16'384U);
    // Marks have no width of their own, so every prefix fits.
    std::string marks = "a";
    for (int i = 0; i < 8000; ++i)
        marks += "\xCC\x81";
    TextLayouts::truncated(TextLayouts::preparedText(marks + "bcdef"), mono(), 20, 10);
    TextLayouts::inLines(TextLayouts::preparedText(marks + "bcdef"), mono(), 20);
}

} // namespace Ostrel
