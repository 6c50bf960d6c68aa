#include "OstrelEngine/Measures/MeasureProtocol.h"

#include "OstrelEngine/Measures/MeasureTable.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Ostrel {

namespace {

/// The text that a measure shows under `Substitute`.
std::string substituted(std::string text, std::string substitute, std::string regularExpression = "0") {
    const auto table = MeasureTable::create();
    auto& measure = table->addLinked("S", "String",
        {{"String", std::move(text)}, {"Substitute", std::move(substitute)},
            {"RegExpSubstitute", std::move(regularExpression)}});
    return measure.value().stringValue;
}

struct SubstituteRow {
    std::string text;
    std::string substitute;
    std::string result;
};

} // namespace

TEST(Substitute, appliesTheFirstPairThatChangesTheText) {
    const SubstituteRow rows[]
        = {{"ac", R"("a":"b","c":"d")", "bc"}, {"a", R"("a":"b","b":"c")", "b"}, {"aXa", R"("x":"1","X":"2")", "a2a"},
            {"a", R"("a":"a","a":"b")", "b"}, {"aa", R"("a":"")", ""}, {"a", R"("":"x")", "a"}, {"a:b", "a:b", "a:b"},
            {"a'", R"('a':'b',"a":"c")", "c'"}, {"ab", R"( , junk "b":"x" , "a" : "y")", "yb"},
            {"ab", R"("a" "b":"x")", "ax"}, {"ab", R"("a":b,"b":"z")", "az"}, {"ab", R"("a":"open)", "openb"},
            {"ab", R"("a":"1",)", "1b"}, {"ab", R"("b)", "ab"}, {"a.c", R"(".":"-")", "a-c"}};
    for (const auto& row : rows)
        EXPECT_EQ(substituted(row.text, row.substitute), row.result) << row.substitute;
}

TEST(Substitute, takesRegularExpressionsWithGroups) {
    const SubstituteRow rows[] = {{"ab", R"~("(a)(b)":"\2\1")~", "ba"}, {"a1b22", R"~("\d+":"<$0>")~", "a<1>b<22>"},
        {"x", R"~("(":"1","x":"2")~", "2"}, {"", R"~("^$":"N/A")~", "N/A"}, {"abc", R"~("b*":"-")~", "-a--c-"},
        {"ab", R"~("(a)|(z)":"[\1\2]")~", "[a]b"}, {"a", R"~("a":"$9$x\$")~", "$x$"}, {"ab", R"~("(a)":"$10")~", "a0b"},
        {"Ab", R"~("(?i)a":"x")~", "xb"}, {"a", R"~("":"x")~", "a"}, {"\xC3\xA9t\xC3\xA9", "\"\xC3\xA9\":\"e\"", "ete"},
        {"Data: 5", R"~(".*: (.)":"\1 \items")~", "5 items"}};
    for (const auto& row : rows)
        EXPECT_EQ(substituted(row.text, row.substitute, "1"), row.result) << row.substitute;
    EXPECT_EQ(substituted("a.b", R"(".":"-")", "01"), "a-b") << "only the exact text 1 turns expressions on";
}

TEST(Substitute, boundsTimeAndLength) {
    const std::string text(40, 'a');
    EXPECT_EQ(substituted(text + "b", R"~("(a+)+$":"x","b":"c")~", "1"), text + "c");
    const std::string longText(5000, 'a');
    EXPECT_EQ(substituted(longText, "\"a\":\"" + longText + "\""), longText);
    EXPECT_EQ(substituted(longText, "\"a\":\"$0" + longText + "\"", "1"), longText);
}

TEST(Substitute, leavesTheNumberAlone) {
    const auto table = MeasureTable::create();
    auto& measure = table->addLinked("C", "Calc", {{"Formula", "2"}, {"Substitute", R"("2":"two")"}});
    EXPECT_EQ(measure.value().stringValue, "two");
    EXPECT_EQ(measure.value().numericValue, 2);
}

TEST(BaseMeasure, readsItsUpdateDivider) {
    const struct {
        std::optional<std::string> text;
        int divider;
    } rows[] = {{std::nullopt, 1}, {"0", 1}, {"-5", -1}, {"abc", 1}, {"7", 7}, {" 7", 1}, {"", 1}, {"5.0", 1},
        {"99999999999", std::numeric_limits<int>::max()}};
    for (const auto& row : rows)
        EXPECT_EQ(BaseMeasure::parseUpdateDivider(row.text), row.divider) << row.text.value_or("absent");
}

TEST(BaseMeasure, countsChangesOfItsOptions) {
    const auto table = MeasureTable::create();
    auto& measure = table->add("S", "Stub", {{"A", "1"}});
    setAndUpdate(measure, "a", "1");
    EXPECT_EQ(measure.optionsRevision(), 0);
    measure.setOption("a", "2");
    EXPECT_EQ(measure.optionsRevision(), 1);
    EXPECT_EQ(*measure.options().find("A"), "2");
    EXPECT_EQ(*measure.definition().allOptions.find("A"), "1");
    EXPECT_EQ(measure.value(), MeasureValue());
}

TEST(MeasureFactory, makesAStubOfWhatHasNoCounterpart) {
    const auto table = MeasureTable::create();
    for (const auto* type : {"WebParser", "Plugin", "Registry", ""}) {
        auto& measure = table->add("M", type, {{"Formula", "1"}});
        EXPECT_NE(dynamic_cast<StubMeasure*>(&measure), nullptr) << type;
    }
    for (const auto* type : {"Calc", "STRING", "cpu", "NetTotal", "Time"})
        EXPECT_EQ(dynamic_cast<StubMeasure*>(&table->add("M", type, {})), nullptr) << type;
}

TEST(MeasureValue, percentIsClampedToItsRange) {
    const struct {
        double number, minimum, maximum, percent;
    } rows[] = {{50, 0, 200, 25}, {5, 5, 5, 0}, {5, 6, 4, 0}, {-1, 0, 10, 0}, {11, 0, 10, 100}, {0, -10, 10, 50},
        {INFINITY, 0, 10, 100}};
    for (const auto& row : rows) {
        MeasureValue value;
        value.numericValue = row.number;
        value.minValue = row.minimum;
        value.maxValue = row.maximum;
        EXPECT_EQ(value.percentValue(), row.percent) << row.number;
    }
}

} // namespace Ostrel
