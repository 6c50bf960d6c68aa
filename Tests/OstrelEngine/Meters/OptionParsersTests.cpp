#include "OstrelEngine/Measures/PositionParser.h"
#include "OstrelEngine/Meters/ColorParser.h"
#include "OstrelEngine/Runtime/OptionResolver.h"

#include <gtest/gtest.h>

namespace Ostrel {

TEST(ColorParser, readsThreeOrFourIntegers) {
    EXPECT_EQ(ColorParser::parse("255,0,0"), (Color{1, 0, 0, 1}));
    EXPECT_EQ(ColorParser::parse("255,0,0,128"), (Color{1, 0, 0, 128 / 255.0}));
    EXPECT_EQ(ColorParser::parse("300,-5,+0"), (Color{1, 0, 0, 1}));
    EXPECT_EQ(ColorParser::parse(" 1 ,\t2 , 3, "), (Color{1 / 255.0, 2 / 255.0, 3 / 255.0, 1}));
    EXPECT_EQ(ColorParser::parse("255,,0,0,"), (Color{1, 0, 0, 1})) << "empty pieces do not count";
}

TEST(ColorParser, refusesEverythingElse) {
    for (const auto* text : {"", ",,", "255,0", "1,2,3,4,5", "FF0000", "1,2,0.5", "red", "1, ,2,3", "1,2,3\n,4x"})
        EXPECT_EQ(ColorParser::parse(text), std::nullopt) << text;
    const Color white{1, 1, 1, 1};
    EXPECT_EQ(ColorParser::parse(std::nullopt, white), white);
    EXPECT_EQ(ColorParser::parse("red", white), white);
    EXPECT_EQ(ColorParser::parse("0,0,0", white), (Color{0, 0, 0, 1}));
}

TEST(PositionParser, readsAbsoluteAndRelativePositions) {
    using enum PositionParser::RelativeReference;
    using PositionParser::PositionValue;
    struct Row {
        const char* text;
        std::optional<PositionValue> expected;
    };
    const Row rows[] = {
        {"12", PositionValue{12, none}},
        {"-1.5", PositionValue{-1.5, none}},
        {"r", PositionValue{0, previousOrigin}},
        {" R ", PositionValue{0, previousEdge}},
        {"5r", PositionValue{5, previousOrigin}},
        {" 5 R", PositionValue{5, previousEdge}},
        {"\"12\"", PositionValue{12, none}},
        {"(10+5)R", PositionValue{15, previousEdge}},
        {"\"2*3\"", PositionValue{6, none}},
        {"abc", std::nullopt},
        {"meter", std::nullopt},
        {"\n", std::nullopt},
        {" \t", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(PositionParser::parsePosition(row.text), row.expected) << row.text;
    EXPECT_EQ(PositionParser::parsePosition(std::nullopt), std::nullopt);
}

TEST(PositionParser, givesZeroForDimensionsWithoutAValue) {
    EXPECT_EQ(PositionParser::parseDimension("(2*8)"), 16);
    EXPECT_EQ(PositionParser::parseDimension(" 7 "), 7);
    for (const auto* text : {"", "  ", "abc", "50r", "#W#"})
        EXPECT_EQ(PositionParser::parseDimension(text), 0) << text;
    EXPECT_EQ(PositionParser::parseDimension(std::nullopt), 0);
}

namespace {

StyleDefinition style(std::string name, std::initializer_list<std::pair<const char*, const char*>> options) {
    StyleDefinition definition;
    definition.sectionName = std::move(name);
    for (const auto& [key, value] : options)
        definition.allOptions.set(key, value);
    return definition;
}

std::string resolvedText(std::optional<std::string> styleReference) {
    MeterDefinition meter;
    meter.meterStyleRef = std::move(styleReference);
    meter.allOptions.set("Y", "own");
    const std::vector styles = {
        style("StyleA", {{"X", "a"}, {"y", "a"}, {"Z", "a"}}),
        style("STYLEB", {{"x", "b"}}),
        style("styleb", {{"x", "never: the second of that name"}}),
    };
    std::string text;
    for (const auto& entry : OptionResolver::resolvedOptions(meter, styles))
        text += entry.key + '=' + entry.value + ' ';
    return text;
}

} // namespace

TEST(OptionResolver, laysTheMeterOverLaterStylesOverEarlierOnes) {
    EXPECT_EQ(resolvedText("StyleA|Unknown| styleB "), "X=b y=own Z=a ");
    EXPECT_EQ(resolvedText("StyleB||stylea"), "x=a y=own Z=a ");
    for (const auto* none : {"", " | ", "Unknown"})
        EXPECT_EQ(resolvedText(none), "Y=own ") << none;
    EXPECT_EQ(resolvedText(std::nullopt), "Y=own ");
}

} // namespace Ostrel
