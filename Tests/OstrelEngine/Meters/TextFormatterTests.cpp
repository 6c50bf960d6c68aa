#include "OstrelEngine/Meters/TextFormatter.h"

#include <gtest/gtest.h>

namespace Ostrel {

namespace {

MeasureValue number(double value, double minimum = 0, double maximum = 100) {
    return {value, "", false, minimum, maximum};
}

MeasureValue text(std::string value, bool prefer = false) {
    return {7, std::move(value), prefer, 0, 100};
}

std::string format(std::string_view textTemplate, std::vector<MeasureValue> values,
    std::initializer_list<std::pair<const char*, const char*>> pairs = {}) {
    Options options;
    for (const auto& [key, value] : pairs)
        options.set(key, value);
    return TextFormatter::format(textTemplate, values, TextFormatter::numberStyle(options));
}

} // namespace

TEST(TextFormatter, showsNumbersAsTheOptionsAsk) {
    EXPECT_EQ(format("%1 %2", {number(1), number(2.5)}), "1 2.50");
    EXPECT_EQ(format("%1", {number(1e15)}), "1000000000000000.00");
    EXPECT_EQ(format("%1", {number(-999999999999999)}), "-999999999999999");
    EXPECT_EQ(format("%1", {number(2)}, {{"NumOfDecimals", "1"}}), "2.0");
    EXPECT_EQ(format("%1", {number(2)}, {{"NumOfDecimals", "-1"}}), "2.000000") << "C ignores a negative precision";
    EXPECT_EQ(format("%1", {number(2.5)}, {{"NumOfDecimals", "x"}}), "2.50");
    EXPECT_EQ(format("%1", {number(50, 0, 200)}, {{"Percentual", "1"}, {"AutoScale", "1"}}), "25");
    EXPECT_EQ(format("%1", {number(50, 0, 200)}, {{"Percentual", "1"}, {"NumOfDecimals", "1"}}), "25.0");
    EXPECT_EQ(format("%1", {number(50, 0, 200)}, {{"Percentual", "2"}}), "50");
}

TEST(TextFormatter, scalesBy1024) {
    const auto scaled = [](double value, const char* decimals) {
        return format("%1B", {number(value)}, {{"AutoScale", "2"}, {"NumOfDecimals", decimals}});
    };
    EXPECT_EQ(scaled(1048576, ""), "1.0 MB");
    EXPECT_EQ(scaled(1023, ""), "1023.0 B") << "a blank before the empty suffix";
    EXPECT_EQ(scaled(-2048, "0"), "-2 kB");
    EXPECT_EQ(scaled(0x1p60, "1"), "1024.0 PB");
    EXPECT_EQ(format("%1", {text("x")}, {{"AutoScale", "1"}}), "7.0 ");
    EXPECT_EQ(format("%1", {text("x")}, {{"AutoScale", "0"}}), "x");
}

TEST(TextFormatter, prefersTextToNumbers) {
    EXPECT_EQ(format("%1", {text("up 3 h")}, {{"NumOfDecimals", "2"}}), "up 3 h");
    EXPECT_EQ(format("[%1]", {text("", true)}), "[]");
    EXPECT_EQ(format("%1", {text("")}), "7");
}

TEST(TextFormatter, replacesTheHighestTokenFirst) {
    std::vector<MeasureValue> values(10, text("a"));
    values[9] = text("ten %1");
    EXPECT_EQ(format("%10 %2 %11 %1", values), "ten a a a1 a");
    EXPECT_EQ(format("%3 %1", {text("%2 %1"), text("b")}), "%3 %2 %1") << "lower tokens only";
    EXPECT_EQ(format("%1", {}), "%1");
}

TEST(TextFormatter, keepsTokensOfATextThatWouldGrowWithoutEnd) {
    std::vector<MeasureValue> values;
    for (int n = 1; n <= 10; ++n) {
        std::string next;
        for (int i = 0; i < 1000; ++i)
            next += "%" + std::to_string(n - 1);
        values.push_back(text(next));
    }
    EXPECT_LE(format("%10", values).size(), 1U << 20);
}

TEST(TextFormatter, decodesHexEscapes) {
    EXPECT_EQ(format("<[\\x41][\\x1F600]>", {}), "<A\xF0\x9F\x98\x80>");
    EXPECT_EQ(format("[\\x%1]", {text("e9")}), "\xC3\xA9") << "after the tokens";
    for (const auto* kept :
        {"[\\xD800]", "[\\x4]", "[\\x1234567]", "[\\x110000]", "[\\X41]", "[\\x-1]", "[\\x41", "[\\x"})
        EXPECT_EQ(format(kept, {}), kept);
    EXPECT_EQ(format("[\\x[\\x42]]", {}), "[\\xB]");
}

TEST(TextFormatter, appliesCases) {
    EXPECT_EQ(TextFormatter::applyCase("straße", "upper"), "STRASSE");
    EXPECT_EQ(TextFormatter::applyCase("ÄB", "Lower"), "äb");
    EXPECT_EQ(TextFormatter::applyCase("aB", "none"), "aB");
    EXPECT_EQ(TextFormatter::applyCase("aB", std::nullopt), "aB");
    EXPECT_EQ(TextFormatter::applyCase("it's a FULL-scale 2nd ǆip", "PROPER"), "It's A Full-Scale 2Nd ǅip");
    EXPECT_EQ(TextFormatter::applyCase("ΟΔΟΣ \xFF σΑΣ", "Proper"), "Οδος \xFF Σας") << "sigma at the end of a word";
}

} // namespace Ostrel
