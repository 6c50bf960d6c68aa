#include "OstrelEngine/Measures/MeasureTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {

namespace {

using testing::ElementsAre;

struct Script {
    using Pairs = std::initializer_list<std::pair<std::string_view, std::string>>;

    explicit Script(Pairs options)
        : measure(host.add("Lua", "Script", options)) { }
    std::vector<std::string> afterCommand(std::string_view command) {
        host.log.clear();
        measure.executeCommand(command);
        return host.log;
    }

    MeasureTable host;
    BaseMeasure& measure;
};

} // namespace

TEST(ScriptMeasure, factorySetsOptionsOfNumberedSections) {
    Script script({{"ScriptFile", "#@#Scripts\\FACTORY.Lua"}, {"Number", "2"}, {"SectionName", "Meter%%"},
        {"Option0", "Y"}, {"Value0", "{%%*20}"}, {"Option1", "X%%"}, {"Value1", "{1/3}r{1/0}\"{2"}, {"Option3", "Z"}});
    const std::vector<std::string> expected
        = {"[!SetOption \"Meter0\" \"Y\" \"0\"]", "[!SetOption \"Meter0\" \"X%%\" \"0.3333333333r0\\\"{2\"]",
            "[!SetOption \"Meter1\" \"Y\" \"20\"]", "[!SetOption \"Meter1\" \"X%%\" \"0.3333333333r0\\\"{2\"]"};
    for (const auto* command : {" initialize()", "Initialize", "InitializeAll"})
        EXPECT_EQ(script.afterCommand(command), expected) << command;
    EXPECT_THAT(script.afterCommand("Update()"), ElementsAre());
}

TEST(ScriptMeasure, factoryNeedsNumberAndName) {
    const std::string file = "factory.lua";
    for (const auto* number : {"-1", "0", "2.5", "x", ""})
        EXPECT_THAT(Script({{"ScriptFile", file}, {"Number", number}, {"SectionName", "M"}, {"Option0", "X"}})
                        .afterCommand("Initialize"),
            ElementsAre())
            << number;
    EXPECT_THAT(
        Script({{"ScriptFile", file}, {"Number", "1"}, {"Option0", "X"}}).afterCommand("Initialize"), ElementsAre());
    EXPECT_THAT(Script({{"ScriptFile", file}, {"Number", "1"}, {"SectionName", "M{1e9*100}"}, {"Option0", "X"}})
                    .afterCommand("Initialize"),
        ElementsAre("[!SetOption \"M100000000000\" \"X\" \"\"]"));
    EXPECT_LE(Script({{"ScriptFile", file}, {"Number", "9000000000"}, {"SectionName", "M"}, {"Option0", "X"}})
                  .afterCommand("Initialize")
                  .size(),
        100000U);
}

TEST(ScriptMeasure, factorySeesTheOptionsThatItSetsItself) {
    Script script({{"ScriptFile", "factory.lua"}, {"Number", "2"}, {"SectionName", "M%%"}, {"Option0", "X"},
        {"Value0", "a"}, {"Option1", "Y"}, {"Value1", "b"}});
    script.host.onAction = [&](std::string_view action) {
        script.measure.setOption("Value1", action.find("M0") != action.npos ? "later" : "last");
    };
    EXPECT_THAT(script.afterCommand("Initialize"),
        ElementsAre("[!SetOption \"M0\" \"X\" \"a\"]", "[!SetOption \"M0\" \"Y\" \"later\"]",
            "[!SetOption \"M1\" \"X\" \"a\"]", "[!SetOption \"M1\" \"Y\" \"last\"]"));
}

TEST(ScriptMeasure, refresherRefreshesEveryOtherTime) {
    Script script({{"ScriptFile", "a/refresher.lua"}});
    EXPECT_THAT(
        script.afterCommand("Initialize"), ElementsAre("[!WriteKeyValue \"Lua\" \"Refreshed\" \"1\"]", "[!Refresh]"));
    EXPECT_THAT(script.afterCommand("Initialize"), ElementsAre("[!WriteKeyValue \"Lua\" \"Refreshed\" \"0\"]"));
    EXPECT_EQ(script.afterCommand("Initialize").size(), 2U);
}

TEST(ScriptMeasure, anyOtherScriptIsInert) {
    for (const auto* file : {"", "other.lua", "myfactory.lua", "factory.lua/x"})
        EXPECT_THAT(Script({{"ScriptFile", file}, {"Number", "1"}, {"SectionName", "M"}, {"Option0", "X"}})
                        .afterCommand("Initialize"),
            ElementsAre())
            << file;
}

} // namespace Ostrel
