#include "OstrelCore/Text/Text.h"

#include <gtest/gtest.h>

namespace Ostrel {

TEST(Text, trimsUnicodeBlanksAtBothEnds) {
    EXPECT_EQ(trimmedWhitespace("\xC2\xA0\t a b \xE3\x80\x80"), "a b");
    EXPECT_EQ(trimmedWhitespace("\n a \n"), "\n a \n");
    EXPECT_EQ(trimmed("\r\n\xE2\x80\xA8 a \xC2\x85"), "a");
    EXPECT_EQ(trimmed(" \xC2"), "\xC2") << "a broken character is no blank";
    EXPECT_EQ(trimmed("\xC3\xA0"), "\xC3\xA0") << "the last byte alone would be a blank";
}

TEST(Text, comparesWithoutCase) {
    EXPECT_TRUE(equalsIgnoringCase("Äß", "äSS"));
    EXPECT_FALSE(equalsIgnoringCase("a", "ab"));
    EXPECT_TRUE(hasPrefixIgnoringCase("@includeX", "@INCLUDE"));
    EXPECT_TRUE(hasPrefixIgnoringCase("@\xC4\xB1nclude", "@INCLUDE")) << "dotless i";
    EXPECT_TRUE(hasSuffixIgnoringCase("x\xC3\xA4"
                                      "act\xC4\xB1on",
        "ACTION"));
    EXPECT_FALSE(hasSuffixIgnoringCase("Actions", "ACTION"));
    EXPECT_TRUE(containsIgnoringCase("xx Minfty", "MIN"));
    EXPECT_FALSE(containsIgnoringCase("mi", "MIN"));
}

TEST(Text, replacesLeftToRightWithoutRescanning) {
    EXPECT_EQ(replacingOccurrences("aaa", "aa", "a"), "aa");
    EXPECT_EQ(replacingOccurrences("abc", "", "x"), "abc");
    EXPECT_EQ(replacingOccurrencesIgnoringCase("Foo.DLL.dll", ".dll", ""), "Foo");
}

TEST(Text, splitsWithAndWithoutEmptyPieces) {
    EXPECT_EQ(split("a||b", '|').size(), 3U);
    EXPECT_EQ(split("", '|').size(), 1U);
    EXPECT_EQ(splitDroppingEmpty("|a||b|", '|').size(), 2U);
}

TEST(Text, decodesHostileBytesOneByOne) {
    const std::string_view text("\xF0\x9F\x98\x80\xED\xA0\x80\xFF", 8);
    EXPECT_EQ(decodeCharacter(text, 0).value, 0x1F600U);
    EXPECT_EQ(decodeCharacter(text, 4).length, 1U);
    EXPECT_FALSE(isValidUTF8(text));
    EXPECT_TRUE(isValidUTF8(text.substr(0, 4)));
    EXPECT_FALSE(isValidUTF8(text.substr(0, 3)));
}

} // namespace Ostrel
