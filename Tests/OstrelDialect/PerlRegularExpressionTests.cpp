#include "OstrelDialect/PerlRegularExpression.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace Ostrel {

namespace {

TEST(PerlRegularExpression, replacesAllMatches) {
    struct Row {
        std::string_view pattern;
        std::string_view subject;
        std::string_view replacement;
        std::string_view expected;
    };
    for (const auto& [pattern, subject, replacement, expected] : {
             Row{"(?siU)<b>(.*)</B>", "<B>x</b><b>y\n</b>", "[\\1]", "[x][y\n]"},
             {"(a)|(b)", "ab", "<\\1\\2\\0>", "<aa><bb>"},
             {"(.)(.)", "ab", "\\21$1\\\\9\\x", "b1$1\\\\x"},
             {"x*", "axb", "-", "-a--b-"},
             {"", "äö", ".", ".ä.ö."},
             {"(?i)Ä", "ä", "a", "a"},
             {"^", "blue", "", "blue"},
         }) {
        const auto expression = PerlRegularExpression::compile(pattern);
        ASSERT_TRUE(expression) << pattern;
        EXPECT_EQ(expression->replaceAll(subject, replacement), expected) << pattern;
    }
}

TEST(PerlRegularExpression, tellsWhyAPatternDoesNotCompile) {
    std::string error;
    EXPECT_FALSE(PerlRegularExpression::compile("(a", &error));
    EXPECT_FALSE(error.empty());
    EXPECT_FALSE(PerlRegularExpression::compile(std::string(70000, 'a')));
}

TEST(PerlRegularExpression, survivesPatternsThatBacktrackForEver) {
    const std::string letters(40, 'a');
    const auto expression = PerlRegularExpression::compile("(*NO_JIT)(a+)+$");
    ASSERT_TRUE(expression);
    EXPECT_FALSE(expression->matches(letters + "b"));
    EXPECT_TRUE(expression->matches(letters));
    const auto quick = PerlRegularExpression::compile("(a+)+$");
    EXPECT_FALSE(quick->matches(letters + "b"));
    const auto recursive = PerlRegularExpression::compile("(a(?1)?b)");
    EXPECT_FALSE(recursive->matches(std::string(500000, 'a')));
}

TEST(PerlRegularExpression, matchesTextThatIsNoUTF8) {
    const auto expression = PerlRegularExpression::compile("b(.)?(c)?");
    ASSERT_TRUE(expression);
    const auto groups = expression->match("\xffxb\xff");
    ASSERT_TRUE(groups);
    EXPECT_EQ((*groups)[0], (PerlRegularExpression::Span{2, 3}));
    EXPECT_EQ(groups->size(), 3U);
    EXPECT_FALSE((*groups)[2]);
    EXPECT_EQ(expression->allMatches("bbb").size(), 2U);
    EXPECT_EQ(expression->allMatches("bbb", 1).size(), 1U);
}

} // namespace

} // namespace Ostrel
