#include "OstrelDialect/OptionValues.h"

#include <gtest/gtest.h>

#include <climits>
#include <optional>
#include <string_view>
#include <vector>

namespace Ostrel {

namespace {

TEST(OptionValues, readsNumbersAndFormulasInParentheses) {
    struct Row {
        std::string_view text;
        std::optional<double> expected;
    };
    for (const auto& [text, expected] : {
             Row{" 12 ", 12},
             {"-.5", -0.5},
             {"+3", 3},
             {"(1+2)*2", 3},
             {"((1+2)*2)", 6},
             {"(1)+(2)", 3},
             {"1+2", 1},
             {"10 ; wide", 10},
             {"(2*3) ;x", 6},
             {"10;", 10},
             {"", {}},
             {"1e3", 1},
             {"inf", {}},
             {"--1", {}},
             {"-12px", -12},
             {"(1/0)", {}},
             {"(", {}},
             {"()", {}},
             {"0x10", 0},
             {"(0x10)", 16},
         })
        EXPECT_EQ(OptionValues::number(text), expected) << text;
    EXPECT_EQ(OptionValues::numberAlone(" (1+2) ; note"), 3);
    EXPECT_EQ(OptionValues::numberAlone("2026-11-21"), std::nullopt);
    EXPECT_EQ(OptionValues::integer("-2.9"), -2);
    EXPECT_EQ(OptionValues::integer("(10**20)"), INT_MAX);
    EXPECT_EQ(OptionValues::isOn("0.0"), false);
    EXPECT_EQ(OptionValues::isOn("(3>2)"), true);
    EXPECT_EQ(OptionValues::isOn("yes"), std::nullopt);
}

TEST(OptionValues, readsColors) {
    using Color = OptionValues::ColorBytes;
    struct Row {
        std::string_view text;
        std::optional<Color> expected;
    };
    for (const auto& [text, expected] : {
             Row{"255, 128,0", Color{255, 128, 0, 255}},
             {"(max(1,2)),-5,300.7,12.9", Color{2, 0, 255, 12}},
             {"1,2,3,", Color{1, 2, 3, 255}},
             {"1,2,3,4 ; note", Color{1, 2, 3, 4}},
             {"fF8000", Color{255, 128, 0, 255}},
             {"00000001", Color{0, 0, 0, 1}},
             {"1,2", {}},
             {"1,2,x", {}},
             {"1,2,3,4,5", {}},
             {"#FF0000", {}},
             {"FF000", {}},
             {"GG0000", {}},
             {"", {}},
             {"1,,3", {}},
         })
        EXPECT_EQ(OptionValues::color(text), expected) << text;
}

TEST(OptionValues, splitsOutsideParentheses) {
    using Items = std::vector<std::string_view>;
    EXPECT_EQ(OptionValues::split(" a | (b|c) |", '|'), (Items{"a", "(b|c)", ""}));
    EXPECT_EQ(OptionValues::split("a),(b,c", ','), (Items{"a)", "(b,c"}));
    EXPECT_EQ(OptionValues::numbers("1, (max(2,3)), x", ','), (std::vector<std::optional<double>>{1, 3, std::nullopt}));
}

TEST(OptionValues, writesNumbersAsText) {
    struct Row {
        double number;
        int decimals;
        std::string_view expected;
    };
    for (const auto& [number, decimals, expected] : {
             Row{1234567, 5, "1234567"},
             {1.5, 5, "1.5"},
             {1.0 / 3, 5, "0.33333"},
             {1.0 / 3, 10, "0.3333333333"},
             {-0.0, 5, "0"},
             {-0.000001, 5, "0"},
             {0.015625, 5, "0.01563"},
             {-0.015625, 5, "-0.01563"},
             {2.5, 0, "3"},
             {0.5, 0, "1"},
             {1.5, 0, "2"},
             {2.4999, 0, "2"},
             {1e20, 5, "100000000000000000000"},
             {100, 0, "100"},
         })
        EXPECT_EQ(OptionValues::numberText(number, decimals), expected) << number;
    EXPECT_EQ(OptionValues::fixedText(2.125, 2), "2.13");
    EXPECT_EQ(OptionValues::fixedText(-0.001, 2), "0.00");
}

} // namespace

} // namespace Ostrel
