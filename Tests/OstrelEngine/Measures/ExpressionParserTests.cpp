#include "OstrelEngine/Measures/CalcMeasure.h"
#include "OstrelEngine/Measures/ExpressionParser.h"
#include "Support/MissingTool.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>

namespace Ostrel {

namespace {

struct Row {
    std::string text;
    double value;
};

void checkValues(const std::vector<Row>& rows) {
    for (const auto& row : rows) {
        const auto value = CalcMeasure::evaluateIfValid(row.text);
        ASSERT_TRUE(value) << row.text;
        EXPECT_DOUBLE_EQ(*value, row.value) << row.text;
        EXPECT_EQ(std::signbit(*value), std::signbit(row.value)) << row.text;
    }
}

void checkInvalid(const std::vector<std::string>& texts) {
    for (const auto& text : texts)
        EXPECT_FALSE(CalcMeasure::evaluateIfValid(text)) << text;
}

std::string nested(std::string_view open, std::size_t depth) {
    std::string text;
    for (std::size_t i = 0; i < depth; ++i)
        text += open;
    return text + "1" + std::string(depth, ')');
}

} // namespace

TEST(ExpressionParser, bindsAndAssociatesAsArithmetic) {
    checkValues({{"1+2*3", 7}, {"(1+2)*3", 9}, {"10-4-3", 3}, {"8/4/2", 1}, {"7%3", 1}, {"-7%3", -1}, {"7%-3", 1},
        {"7.5%2", 1.5}, {"2*-3", -6}, {"--3", 3}, {"- + -3", 3}, {"-(2+1)*2", -6}, {"-0", -0.0}, {"0*-5", -0.0},
        {" 1\t+\n2 ", 3}, {"((4))", 4}});
    checkInvalid({"", " ", "1 2", "1+", "*2", "(1", "1)", "()", "1//2", "1>0", "1?2:3", "2^3", "0x10", "1,2", "a",
        "[A]", "1/0", "5+1/0", "1/-0", "1%0", "0/0"});
}

TEST(ExpressionParser, readsNumbersWithAPointOnEitherSide) {
    checkValues({{".5", 0.5}, {"5.", 5}, {"5.+.5", 5.5}, {"1e3", 1000}, {"1E+2", 100}, {"1.5e-1", 0.15}, {"010", 10},
        {"2-1e1", -8}, {"1/1e999", 0}});
    checkInvalid({".", "1.2.3", "2e", "2e+", "e5", "1e999", "inf", "nan", "1_000", "5²", "٣"});
}

TEST(ExpressionParser, knowsFifteenFunctionsInAnyCase) {
    checkValues({{"TRUNC(-2.7)", -2}, {"trunc(-0.5)", 0}, {"FLOOR(-2.5)", -3}, {"Ceil(2.1)", 3}, {"ROUND(2.5)", 3},
        {"round(-2.5)", -3}, {"ROUND(3.14159,2)", 3.14}, {"ROUND(1234,-2)", 1200}, {"ABS(-3)", 3}, {"MAX(1,2)", 2},
        {"MIN(1,2)", 1}, {"CLAMP(5,0,1)", 1}, {"CLAMP(-5,0,1)", 0}, {"CLAMP(5,3,1)", 3}, {"LOG(1000)", 3}, {"LN(1)", 0},
        {"SIN(0)", 0}, {"COS(0)", 1}, {"TAN(0)", 0}, {"SQRT(16)", 4}, {"RAD(180)", 3.141592653589793}, {"sin (0)", 0},
        {"MAX( 1 , MIN(4,3) )*2", 6}, {"\xC5\xBFqrt(16)", 4}});
    checkInvalid({"DEG(1)", "POW(2,2)", "PI", "LOG10(5)", "SIN", "SIN 0", "SIN(", "SIN(1", "SIN(1,", "SIN(1,)",
        "SIN(,1)", "FLOORS(1)", "LOG(0)", "SQRT(-1)"});
    checkValues({{"MAX(5,SQRT(-1))", 5}, {"1/LOG(0)", -0.0}});
    checkInvalid({"MAX(SQRT(-1),5)"});
}

TEST(ExpressionParser, ignoresExtraArgumentsAndReadsOnWhereSomeAreMissing) {
    checkValues({{"MAX(1,2,3)", 2}, {"MAX(1,2,3,4,5,6)", 2}, {"SIN(0,1/2)", 0}, {"MAX(1)5", 5}, {"MAX(1) 5", 5},
        {"MAX(1)(5)", 5}, {"1+MAX(1)(2+3)*2", 11}, {"SQRT()9", 9}, {"CLAMP(1,2).5", 0.5}, {"-MAX(1)5", -5}});
    checkInvalid({"MAX(1)", "MAX(1) (5)", "MAX(1)-5", "MAX(1)MAX(1,2)", "SIN(0,1/0)"});
}

TEST(ExpressionParser, takesBlanksOfAnyScript) {
    checkValues({{"1\xC2\xA0+\xE2\x80\x89"
                  "2",
                     3},
        {"\xE3\x80\x80"
         "4\xE2\x80\xA8",
            4},
        {"1 \xCC\x81+2", 3}, {"1\r\n+2", 3}});
    checkInvalid({"1\t\xCC\x81+2", "1\xE2\x80\x8B+2", "1\xCC\x81",
        "(\xCC\x81"
        "1)",
        "1\xFF"});
}

TEST(ExpressionParser, boundsItsDepth) {
    constexpr auto Deepest = static_cast<std::size_t>(ExpressionParser::MaximumDepth);
    for (const auto* open : {"(", "SIN(", "MAX(1)(", "ABS(-("}) {
        const auto pairs = std::string_view(open) == "ABS(-(" ? Deepest / 2 : Deepest;
        const auto text = nested(open, pairs);
        const auto closed = text + std::string(std::string_view(open) == "ABS(-(" ? pairs : 0, ')');
        EXPECT_TRUE(CalcMeasure::evaluateIfValid(closed)) << open;
        EXPECT_FALSE(CalcMeasure::evaluateIfValid("(" + closed + ")")) << open;
        EXPECT_FALSE(CalcMeasure::evaluateIfValid(nested(open, 300'000))) << open;
    }
    EXPECT_EQ(CalcMeasure::evaluateIfValid(std::string(300'001, '-') + "1"), -1);
}

TEST(ExpressionParser, doesNotSeeTheLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8"))
        OSTREL_SKIP_FOR_WANT_OF("a comma locale");
    checkValues({{"1.5*2", 3}, {"MAX(1.5,2.5)", 2.5}});
    std::setlocale(LC_ALL, before.c_str());
}

TEST(ExpressionParserDeathTest, stopsWhereTRUNCHasNoInteger) {
    EXPECT_EQ(CalcMeasure::evaluateIfValid("TRUNC(-9223372036854775808)"), -9223372036854775808.0);
    EXPECT_DEATH(CalcMeasure::evaluate("TRUNC(9223372036854775808)"), "would be greater than Int.max");
    EXPECT_DEATH(CalcMeasure::evaluate("TRUNC(-9223372036854777856)"), "would be less than Int.min");
    EXPECT_DEATH(CalcMeasure::evaluate("TRUNC(SQRT(-1))"), "it is either infinite or NaN");
}

} // namespace Ostrel
