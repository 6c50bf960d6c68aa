#include "OstrelEngine/Measures/StringMeasure.h"

#include "OstrelEngine/Measures/MeasureTable.h"
#include "Support/AllocationCounter.h"

#include <gtest/gtest.h>

namespace Ostrel {

TEST(StringMeasure, replacesReferencesByValues) {
    const auto table = MeasureTable::create();
    table->add("Cpu", "Calc", {{"Formula", "12.4"}, {"MaxValue", "100"}}).update();
    table->add("Stub", "WebParser", {});
    table->add("Name", "String", {{"String", "text"}}).update();
    table->add("Empty", "String", {{"String", ""}}).update();
    const struct {
        std::string source;
        std::string text;
    } rows[] = {{"CPU [Cpu:%]%", "CPU 12%"}, {"[cpu]", "12.4"}, {"[ Cpu : % ]", "12"},
        {"[Cpu:x] [Cpu:] [Cpu:%:x]", "12.4 12.4 12.4"}, {"[Stub]", "0"}, {"[Name][Empty].", "text."},
        {"[#Var] [!Bang] [Name]", "[#Var] [!Bang] text"}, {"[Unknown] [Name]", "[Unknown] text"},
        {"[ [Name]", "[ [Name]"}, {"[[Name]]", "[[Name]]"}, {"[", "["}, {"a]b[Name", "a]b[Name"}, {"[]", "[]"},
        {"[Name]]", "text]"}, {"", ""}};
    for (const auto& row : rows)
        EXPECT_EQ(table->addLinked("S", "String", {{"String", row.source}}).value().stringValue, row.text)
            << row.source;
}

TEST(StringMeasure, resolvesWhatAValueHolds) {
    const auto table = MeasureTable::create();
    table->add("Inner", "String", {{"String", "[Name]"}}).update();
    table->add("Open", "String", {{"String", "<[Na"}}).update();
    table->add("Name", "String", {{"String", "text"}}).update();
    EXPECT_EQ(table->addLinked("S", "String", {{"String", "([Inner])"}}).value().stringValue, "(text)");
    EXPECT_EQ(table->addLinked("S", "String", {{"String", "[Open]me]>"}}).value().stringValue, "<text>");
}

TEST(StringMeasure, isANumberWhenItsWholeTextIsOne) {
    const auto table = MeasureTable::create();
    const struct {
        std::string text;
        double number;
    } rows[] = {{"42", 42}, {" -1.5\t", -1.5}, {"abc", 0}, {"1 2", 0}, {"", 0}};
    for (const auto& row : rows) {
        const auto& value = table->addLinked("S", "String", {{"Text", row.text}}).value();
        EXPECT_EQ(value.numericValue, row.number) << row.text;
        EXPECT_EQ(value.stringValue, row.text);
        EXPECT_TRUE(value.preferStringValue);
        EXPECT_EQ(value.maxValue, 0);
    }
    EXPECT_EQ(table->addLinked("S", "String", {{"Text", "b"}, {"String", "a"}}).value().stringValue, "a");
}

TEST(StringMeasure, followsChangesOfItsSources) {
    const auto table = MeasureTable::create();
    auto& number = table->addNumber("N", "1");
    auto& text = table->addLinked("S", "String", {{"String", "a [N] text that does not fit into a small string"}});
    text.update();
    const auto before = allocationCount();
    for (int i = 0; i < 100; ++i)
        text.update();
    EXPECT_EQ(allocationCount(), before);
    setAndUpdate(number, "Formula", "2");
    text.update();
    EXPECT_TRUE(text.value().stringValue.starts_with("a 2"));
    setAndUpdate(text, "String", "[N]!");
    EXPECT_EQ(text.value().stringValue, "2!");
}

TEST(StringMeasure, countsNotANumberAsAChangeOnEveryUpdate) {
    const auto table = MeasureTable::create();
    auto& text = table->addLinked("S", "String", {{"String", "nan"}});
    const auto revision = text.valueRevision();
    text.update();
    EXPECT_EQ(text.valueRevision(), revision + 1);
}

TEST(StringMeasure, endsWhereAValueRefersToItself) {
    for (const auto* source : {"x[S]", "[S][S]", "[S]y[S]"}) {
        const auto table = MeasureTable::create();
        auto& text = table->addLinked(
            "S", "String", {{"String", "seed"}, {"Substitute", "\"seed\":\"" + std::string(source) + "\""}});
        text.setOption("String", source);
        for (int i = 0; i < 8; ++i)
            text.update();
        EXPECT_NE(text.value().stringValue.find("[S]"), std::string::npos) << source;
        EXPECT_LT(text.value().stringValue.size(), 2U << 20) << source;
    }
}

TEST(StringMeasure, boundsTextsThatMultiply) {
    const auto table = MeasureTable::create();
    table->add("L0", "String", {{"String", std::string(1000, 'x')}}).update();
    std::string longest;
    for (int level = 1; level < 8; ++level) {
        std::string source;
        for (int i = 0; i < 100; ++i)
            source += "[L" + std::string(1, static_cast<char>('0' + level - 1)) + "]";
        longest = table->addLinked("L" + std::string(1, static_cast<char>('0' + level)), "String", {{"String", source}})
                      .value()
                      .stringValue;
    }
    EXPECT_LT(longest.size(), 2U << 20);
}

} // namespace Ostrel
