#include "OstrelCore/Text/Numbers.h"
#include "Support/FakeFullHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace Ostrel {

namespace {

/// "number of minimum..maximum 'text'"
std::string shown(const BaseMeasure& measure) {
    const auto& value = measure.value();
    auto text = formatGeneral(value.numericValue, 12) + " of " + formatGeneral(value.minValue, 12) + ".."
        + formatGeneral(value.maxValue, 12);
    if (value.preferStringValue)
        text += " '" + value.stringValue + "'";
    return text;
}

void set(BaseMeasure& measure, std::string_view key, std::string_view value) {
    measure.setOption(key, value);
    measure.update();
}

} // namespace

TEST(FullValueShaping, tracksAveragesInvertsAndKeepsWrittenBounds) {
    FakeFullHost skin;
    auto& tracked = skin.addUpdated("A", "Calc", {{"Formula", "0.5"}});
    EXPECT_EQ(shown(tracked), "0.5 of 0..1");
    set(tracked, "Formula", "30");
    set(tracked, "Formula", "-4");
    EXPECT_EQ(shown(tracked), "-4 of -4..30") << "bounds only widen";
    set(tracked, "MaxValue", "(5*2)");
    EXPECT_EQ(shown(tracked), "-4 of -4..10");
    set(tracked, "InvertMeasure", "1");
    EXPECT_EQ(shown(tracked), "10 of -4..10");

    auto& mean = skin.addUpdated("B", "Calc", {{"Formula", "2"}, {"AverageSize", "2"}});
    set(mean, "Formula", "4");
    EXPECT_EQ(shown(mean), "3 of 0..3") << "the bounds follow the mean";
    set(mean, "Formula", "8");
    EXPECT_EQ(shown(mean), "6 of 0..6");

    skin.fake.host.memory = MemoryFigures{30, 100};
    skin.fake.host.swapSpace = MemoryFigures{10, 20};
    const struct {
        std::string type, total, inverted, shown;
    } rows[] = {{"PhysicalMemory", "0", "0", "30 of 0..100"}, {"PhysicalMemory", "0", "1", "70 of 0..100"},
        {"physicalmemory", "1", "1", "100 of 0..100"}, {"SwapMemory", "0", "0", "40 of 0..120"},
        {"Memory", "1", "0", "120 of 0..120"}};
    for (const auto& row : rows) {
        EXPECT_EQ(shown(skin.addUpdated(
                      "M", row.type, {{"Total", row.total}, {"InvertMeasure", row.inverted}, {"MaxValue", "7"}})),
            row.shown);
    }
}

TEST(FullValueShaping, substitutesPairByPair) {
    const struct {
        std::string_view input, pairs;
        bool isExpression;
        std::string_view result;
    } rows[] = {{"ab", R"("a":"b","ab":"c")", false, "bb"}, {"a-a", R"('a':'"',"-":"")", false, R"("")"},
        {"", R"("":"none")", false, "none"}, {"x", R"("":"none")", false, "x"}, {"", R"("":"a","a":"b")", false, "b"},
        {"Aa", R"("a":"1")", false, "A1"}, {"a", R"("a" : "1" , "1":"2")", false, "2"},
        {"a", R"(junk,"a":"1")", false, "1"}, {"a", R"("a":"1)", false, "a"},
        {"Song (live)", R"x("^(.*?) \((\w+)\)$":"\2: \1 $1")x", true, "live: Song $1"},
        {"abc", R"("(?i)B":"[\0]","c":"\9")", true, "a[b]"}, {"a", R"("(":"x","a":"b")", true, "b"}};
    for (const auto& row : rows) {
        FakeFullHost skin;
        const auto& measure = skin.addUpdated("S", "String",
            {{"String", std::string(row.input)}, {"Substitute", std::string(row.pairs)},
                {"RegExpSubstitute", row.isExpression ? "1" : "0"}});
        EXPECT_EQ(measure.value().stringValue, row.result) << row.pairs;
    }
    FakeFullHost skin;
    const auto& number = skin.addUpdated("N", "Calc", {{"Formula", "1"}, {"Substitute", R"("-1":"off","1":"on")"}});
    ASSERT_NE(number.value().textRule, nullptr) << "a number's text is made when it is asked for";
    EXPECT_EQ(number.value().textRule->apply("1"), "on");
    EXPECT_EQ(shown(number), "1 of 0..1");
}

TEST(FullValueShaping, boundsWhatPairsMakeOfAText) {
    FakeFullHost skin;
    std::string pairs;
    for (int i = 0; i < 60; ++i)
        pairs += R"("a":"aa",)";
    const auto& measure = skin.addUpdated("S", "String", {{"String", "a"}, {"Substitute", pairs}});
    EXPECT_LE(measure.value().stringValue.size(), std::size_t{1} << 20);
}

TEST(FullCalc, readsLiveNamesAndKeepsItsValueWhenInvalid) {
    FakeFullHost skin;
    auto& first = skin.addUpdated("First", "Calc", {{"Formula", "20000000001"}});
    auto& sum = skin.addUpdated("Sum", "Calc", {{"Formula", "FIRST * 2 + Counter"}});
    EXPECT_EQ(sum.value().numericValue, 40000000002) << "exact";
    skin.cycles = 7;
    set(first, "Formula", "1");
    sum.update();
    EXPECT_EQ(sum.value().numericValue, 9);
    for (const std::string_view broken : {"First +", "Nobody", "1 / (First - 1)", "log(0)"}) {
        skin.lines.clear();
        set(sum, "Formula", broken);
        EXPECT_EQ(sum.value().numericValue, 9) << broken;
        EXPECT_EQ(skin.lines.size(), 1U) << broken;
    }
    auto& counting = skin.add("Me", "Calc", {{"Formula", "Me + 1"}});
    for (int i = 0; i < 3; ++i)
        counting.update();
    EXPECT_EQ(counting.value().numericValue, 3);
    EXPECT_FALSE(counting.value().preferStringValue);
    EXPECT_EQ(counting.value().stringValue, "");
}

TEST(FullCalc, drawsWithinItsBounds) {
    FakeFullHost skin;
    const auto draws = [](BaseMeasure& measure, int count) {
        std::vector<double> numbers;
        for (int i = 0; i < count; ++i) {
            measure.update();
            numbers.push_back(measure.value().numericValue);
        }
        return numbers;
    };
    auto& once = skin.add("Once", "Calc", {{"Formula", "Random - Random + Random"}, {"HighBound", "1000000"}});
    const auto same = draws(once, 5);
    EXPECT_EQ(std::set<double>(same.begin(), same.end()).size(), 1U);

    auto& unique = skin.add("Unique", "Calc",
        {{"Formula", "Random"}, {"LowBound", "9"}, {"HighBound", "5"}, {"UpdateRandom", "1"}, {"UniqueRandom", "1"}});
    for (int round = 0; round < 3; ++round) {
        const auto bag = draws(unique, 5);
        EXPECT_EQ(std::set<double>(bag.begin(), bag.end()), (std::set<double>{5, 6, 7, 8, 9}));
    }
    auto& wide = skin.add("Wide", "Calc",
        {{"Formula", "Random"}, {"LowBound", "-3"}, {"HighBound", "2147483647"}, {"UpdateRandom", "1"},
            {"UniqueRandom", "1"}});
    const auto numbers = draws(wide, 50);
    EXPECT_GT(std::set<double>(numbers.begin(), numbers.end()).size(), 45U);
    EXPECT_TRUE(std::ranges::all_of(numbers, [](double n) { return n >= -3 && n <= 2147483647; }));
}

TEST(FullProcessor, showsOneOrAll) {
    FakeFullHost skin;
    auto& host = skin.fake.host;
    host.processorTimes = {{100, 100}, {60, 40}, {40, 60}};
    auto& all = skin.addUpdated("All", "CPU");
    auto& second = skin.addUpdated("Second", "CPU", {{"Processor", "2"}});
    auto& none = skin.addUpdated("None", "CPU", {{"Processor", "3"}});
    EXPECT_EQ(shown(all), "0 of 0..100");
    host.processorTimes = {{125, 175}, {60, 90}, {65, 85}};
    for (auto* measure : {&all, &second, &none})
        measure->update();
    EXPECT_EQ(shown(all), "25 of 0..100");
    EXPECT_EQ(shown(second), "50 of 0..100");
    EXPECT_EQ(shown(none), "0 of 0..100");
    host.processorTimes = {};
    all.update();
    EXPECT_EQ(shown(all), "0 of 0..100") << "no read";
}

TEST(FullLoop, stepsAndStays) {
    FakeFullHost skin;
    const auto course = [&skin](FakeFullHost::Pairs options, int count) {
        auto& measure = skin.add("L", "Loop", options);
        std::string result;
        for (int i = 0; i < count; ++i) {
            measure.update();
            result += formatGeneral(measure.value().numericValue) + " ";
        }
        return result + formatGeneral(measure.value().minValue) + ".." + formatGeneral(measure.value().maxValue);
    };
    EXPECT_EQ(course({{"EndValue", "5"}, {"Increment", "3"}}, 5), "1 4 5 1 4 1..5");
    EXPECT_EQ(course({{"StartValue", "3"}, {"EndValue", "1"}, {"Increment", "-1"}, {"LoopCount", "2"}}, 8),
        "3 2 1 3 2 1 1 1 1..3");
    EXPECT_EQ(course({{"EndValue", "3"}, {"InvertMeasure", "1"}}, 4), "3 2 1 3 1..3");
    EXPECT_EQ(course({{"EndValue", "3"}, {"Increment", "-1"}}, 3), "1 1 1 1..3");
    EXPECT_EQ(course({{"EndValue", "3"}, {"Increment", "0"}}, 2), "1 1 1..3");
    EXPECT_EQ(course({{"StartValue", "-2147483648"}, {"EndValue", "2147483647"}, {"Increment", "2147483647"}}, 4),
        "-2.14748e+09 -1 2.14748e+09 2.14748e+09 -2.14748e+09..2.14748e+09");
}

TEST(FullMeasureFactory, knowsEverySpellingAndStubsTheRest) {
    const struct {
        std::string_view written, name;
    } rows[] = {{"Plugins\\NowPlaying.dll", "NOWPLAYING"}, {"a/b\\Ping.DLL", "PING"},
        {" UsageMonitor ", "USAGEMONITOR"}, {"", ""}};
    for (const auto& row : rows)
        EXPECT_EQ(FullMeasureFactory::pluginName(row.written), row.name);
    FakeFullHost skin;
    auto& unknown = skin.addUpdated("U", "Plugin:Nobody.dll", {{"MaxValue", "5"}});
    EXPECT_EQ(shown(unknown), "0 of 0..1");
    EXPECT_EQ(skin.lines, std::vector<std::string>{"log U Nothing serves the measure Nobody.dll"});
}

} // namespace Ostrel
