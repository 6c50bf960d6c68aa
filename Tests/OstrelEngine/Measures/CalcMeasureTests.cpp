#include "OstrelEngine/Measures/CalcMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelEngine/Measures/MeasureTable.h"
#include "Support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <random>

namespace Ostrel {

namespace {

double formulaValue(MeasureTable& table, const std::string& formula) {
    return table.addLinked("F", "Calc", {{"Formula", formula}}).value().numericValue;
}

} // namespace

TEST(CalcMeasure, putsMeasureNumbersIntoTheTextAsText) {
    const auto table = MeasureTable::create();
    table->addNumber("Cpu", "12.5");
    table->addNumber("Whole", "12");
    table->addNumber("Minus", "-3");
    table->addNumber("Huge", "1e20");
    table->addNumber("_x1", "7");
    const struct {
        std::string formula;
        double value;
    } rows[] = {{"CPU*2", 25}, {"cpu+Cpu", 25}, {"Whole.5", 12.5}, {"Cpu.5", 0}, {"5.Whole", 5.12}, {"1e+Whole", 1e12},
        {"1e-Whole", 1e-12}, {"5Cpu", 0}, {"Cpu5", 0}, {"Cpu_", 0}, {"5-Minus", 8}, {"Huge/10", 1e19}, {"_X1", 7},
        {"Unknown+1", 0}, {"MAX(Cpu,Whole)", 12.5}, {"[Cpu]", 0}, {"(Cpu)", 12.5},
        {"\xC3\xA9"
         "Cpu",
            0},
        {"Cpu\xC3\xA9", 0}, {"Cpu\xC2\xA0+1", 13.5},
        {"\xC2\xA0"
         "Cpu*Whole",
            150}};
    for (const auto& row : rows)
        EXPECT_DOUBLE_EQ(formulaValue(*table, row.formula), row.value) << row.formula;
    table->addNumber("Sin", "4");
    EXPECT_EQ(formulaValue(*table, "Sin(0)"), 0) << "the text is 4(0)";
    EXPECT_EQ(formulaValue(*table, "MAX(1)Sin"), 4) << "the text is MAX(1)4";
}

TEST(CalcMeasure, publishesItsRangeAndText) {
    const auto table = MeasureTable::create();
    auto& measure = table->addLinked("F", "Calc", {{"Formula", "1e6/3"}});
    EXPECT_EQ(measure.value().stringValue, "333333");
    EXPECT_FALSE(measure.value().preferStringValue);
    EXPECT_EQ(measure.value().minValue, 0);
    EXPECT_EQ(measure.value().maxValue, 1);
    measure.setOption("MinValue", " -5 ");
    setAndUpdate(measure, "MaxValue", "2*5");
    EXPECT_EQ(measure.value().minValue, -5);
    EXPECT_EQ(measure.value().maxValue, 1) << "no formula is taken there";
    for (const auto* text : {"inf", "nan", "", "0x10"}) {
        setAndUpdate(measure, "MaxValue", text);
        EXPECT_EQ(measure.value().maxValue, 1) << text;
    }
    setAndUpdate(measure, "Formula", "bad+");
    EXPECT_EQ(measure.value().stringValue, "0");
}

TEST(CalcMeasure, readsItsOwnPreviousValue) {
    const auto table = MeasureTable::create();
    auto& counter = table->addLinked("Counter", "Calc", {{"Formula", "Counter+1"}});
    for (int i = 0; i < 3; ++i)
        counter.update();
    EXPECT_EQ(counter.value().numericValue, 4);
}

TEST(CalcMeasure, averagesOverTheLastValues) {
    const struct {
        std::string size;
        std::vector<double> means;
    } rows[] = {{"3", {3, 4.5, 6, 9}}, {" 2*1 ", {3, 4.5, 7.5, 10.5}}, {"2.5", {3, 4.5, 6, 9}}, {"0", {3, 6, 9, 12}},
        {"-4", {3, 6, 9, 12}}, {"5000", {3, 4.5, 6, 7.5}}, {"abc", {3, 6, 9, 12}}, {"", {3, 6, 9, 12}}};
    for (const auto& row : rows) {
        const auto table = MeasureTable::create();
        auto& measure = table->add("F", "Calc", {{"AverageSize", row.size}});
        for (std::size_t i = 0; i < row.means.size(); ++i) {
            setAndUpdate(measure, "Formula", formatGeneral(3 * static_cast<double>(i + 1)));
            EXPECT_EQ(measure.value().numericValue, row.means[i]) << row.size << " at " << i;
        }
    }
}

TEST(CalcMeasure, movesItsAverageOnWhileTheFormulaStands) {
    const auto table = MeasureTable::create();
    auto& measure = table->addLinked("F", "Calc", {{"Formula", "0"}, {"AverageSize", "2"}});
    setAndUpdate(measure, "Formula", "8");
    EXPECT_EQ(measure.value().numericValue, 4);
    measure.update();
    EXPECT_EQ(measure.value().numericValue, 8);
    setAndUpdate(measure, "AverageSize", "3");
    setAndUpdate(measure, "Formula", "2");
    EXPECT_EQ(measure.value().numericValue, 5) << "another size forgets what came before";
}

TEST(CalcMeasureDeathTest, stopsOnAnAverageSizeBeyondTheIntegers) {
    const auto table = MeasureTable::create();
    EXPECT_DEATH(table->addLinked("F", "Calc", {{"AverageSize", "1e19"}}), "would be greater than Int.max");
    EXPECT_DEATH(table->addLinked("F", "Calc", {{"AverageSize", "-1e10*1e10"}}), "would be less than Int.min");
}

TEST(CalcMeasure, isAsFreshAfterAnySequenceOfChanges) {
    const std::string formulas[] = {"A+B*2", "F+A", "MAX(A,B)", "A.5", "7", "A/B"};
    const auto table = MeasureTable::create();
    auto& a = table->addNumber("A", "0");
    auto& b = table->addNumber("B", "0");
    auto& kept = table->addLinked("F", "Calc", {{"Formula", formulas[0]}});
    std::mt19937 random(7);
    for (int step = 0; step < 2000; ++step) {
        const auto draw = random();
        if (draw % 3 == 0)
            setAndUpdate(draw % 2 ? a : b, "Formula", formatGeneral(static_cast<double>(draw / 6 % 5) / 2));
        if (draw % 11 == 0)
            kept.setOption("Formula", formulas[draw / 11 % std::size(formulas)]);
        MeasureDefinition definition{"Fresh", "Calc", std::nullopt, kept.options()};
        CalcMeasure fresh(definition, "", *table);
        fresh.update();
        kept.update();
        ASSERT_EQ(fresh.value().stringValue, kept.value().stringValue) << "step " << step;
    }
}

TEST(CalcMeasure, allocatesNothingWhileNothingChanges) {
    const auto table = MeasureTable::create();
    auto& number = table->addNumber("A", "0.123456789");
    const auto options = {std::pair<std::string_view, std::string>{"Formula", "A*2+MAX(A, 1.5)"}, {"AverageSize", "4"},
        {"Substitute", "\"1.74691\":\"a text that does not fit into a small string\""}};
    auto& measure = table->addLinked("F", "Calc", options);
    for (int i = 0; i < 10; ++i)
        measure.update();
    const auto revision = measure.valueRevision();
    const auto before = allocationCount();
    for (int i = 0; i < 100; ++i) {
        number.update();
        measure.update();
    }
    EXPECT_EQ(allocationCount(), before);
    EXPECT_EQ(measure.valueRevision(), revision);
    EXPECT_EQ(measure.value().stringValue, "a text that does not fit into a small string");
}

} // namespace Ostrel
