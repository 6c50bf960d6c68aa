#include "OstrelCore/Text/Numbers.h"
#include "Support/MissingTool.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>

namespace Ostrel {

namespace {

void checkNumberTables() {
    const struct {
        std::string_view text;
        double value;
    } valid[] = {{"0", 0}, {"-1.5", -1.5}, {"+2", 2}, {".5", 0.5}, {"5.", 5}, {"1e3", 1000}, {"1E-2", 0.01},
        {"1e999", INFINITY}, {"-1e999", -INFINITY}, {"1e-999", 0}, {"0.0000001e9999", INFINITY}, {"inf", INFINITY},
        {"-Infinity", -INFINITY}};
    for (const auto& row : valid)
        EXPECT_EQ(parseDouble(row.text), row.value) << row.text;
    EXPECT_TRUE(std::isnan(parseDouble("nan").value_or(0)));
    for (const auto* text : {"", " 1", "1 ", "1,5", "0x10", "1e", "--1", "+-1", ".", "abc", "1.5.2", "e5"})
        EXPECT_FALSE(parseDouble(text)) << text;
    EXPECT_EQ(formatFixed(1234.5678, 2), "1234.57");
    EXPECT_EQ(formatGeneral(0.0001), "0.0001");
}

} // namespace

TEST(Numbers, readsWholeTextsOnly) {
    checkNumberTables();
}

TEST(Numbers, areTheSameUnderACommaLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8"))
        OSTREL_SKIP_FOR_WANT_OF("a comma locale");
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    checkNumberTables();
    std::setlocale(LC_ALL, before.c_str());
}

TEST(Numbers, readANumberThatATextBeginsWith) {
    const struct {
        std::string_view text;
        double value;
        std::size_t length;
    } rows[] = {{"12.5*2", 12.5, 4}, {".5.5", 0.5, 2}, {"5.+", 5, 2}, {"1e3e", 1000, 3}, {"2e", 2, 1}, {"2e+x", 2, 1},
        {"1E-2)", 0.01, 4}, {"0.1", 0.1, 3}, {"123456789.012345", 123456789.012345, 16}, {"1e999-", INFINITY, 5},
        {"0.30000000000000004441", 0.30000000000000004441, 22}, {"9007199254740993", 9007199254740992, 16},
        {"18446744073709551616", 18446744073709551616.0, 20}, {"000000000000000000000001", 1, 24}, {"", 0, 0},
        {".", 0, 0}, {".e5", 0, 0}, {"-1", 0, 0}, {"inf", 0, 0}};
    for (const auto& row : rows) {
        const auto number = parseNumberPrefix(row.text);
        EXPECT_EQ(number.value, row.value) << row.text;
        EXPECT_EQ(number.length, row.length) << row.text;
    }
}

TEST(Numbers, readsIntegersWithinSixtyFourBits) {
    EXPECT_EQ(parseInteger("+5"), 5);
    EXPECT_EQ(parseInteger("-0"), 0);
    EXPECT_EQ(parseInteger("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
    for (const auto* text : {"", "+", "-", "+-1", "9223372036854775808", "1.0", "1 ", "0x1"})
        EXPECT_FALSE(parseInteger(text)) << text;
}

TEST(Numbers, printAsC) {
    const struct {
        double value;
        int decimals;
        std::string_view text;
    } fixed[]
        = {{2.5, 0, "2"}, {3.5, 0, "4"}, {-0.0, 0, "-0"}, {1.005, 2, "1.00"}, {1e22, 1, "10000000000000000000000.0"},
            {0.1, 20, "0.10000000000000000555"}, {7, -1, "7.000000"}, {NAN, 2, "nan"}, {-INFINITY, 2, "-inf"}};
    for (const auto& row : fixed)
        EXPECT_EQ(formatFixed(row.value, row.decimals), row.text);
    EXPECT_EQ(formatGeneral(1e20, 10), "1e+20");
    EXPECT_EQ(formatGeneral(123456789), "1.23457e+08");
    EXPECT_EQ(formatGeneral(0.1, 10), "0.1");
    EXPECT_EQ(formatGeneral(-0.0), "-0");
}

TEST(Numbers, printShortestDigitsThatReadBack) {
    EXPECT_EQ(formatShortest(1731700000), "1731700000.0");
    EXPECT_EQ(formatShortest(1731700000.123), "1731700000.123");
    EXPECT_EQ(formatShortest(-0.1), "-0.1");
    EXPECT_EQ(formatShortest(1e22), "10000000000000000000000.0");
    EXPECT_EQ(formatShortest(-HUGE_VAL), "-inf");
    EXPECT_EQ(formatInteger(-9223372036854775807 - 1), "-9223372036854775808");
}

TEST(Numbers, formatNumericDropsWhatSaysNothing) {
    const struct {
        double value;
        std::string_view text;
    } rows[] = {{2.9999999999, "3"}, {1.5, "1.5"}, {-0.25, "-0.25"}, {-0.0, "0"}, {1e19, "10000000000000000000"},
        {0.0000006, "0.000001"}, {0.0000003, "0"}, {100.10, "100.1"}};
    for (const auto& row : rows)
        EXPECT_EQ(formatNumeric(row.value), row.text) << row.value;
    EXPECT_EQ(numericAsInt64(-3.9), -3);
    EXPECT_EQ(numericAsInt64(1e30), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(numericAsInt64(NAN), 0);
}

} // namespace Ostrel
