#include "OstrelEngine/Measures/InputTextMeasure.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/MeasureTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {

namespace {

using testing::ElementsAre;

/// An input measure that writes down what it asks for: actions as they are, "?" for a prompt, "x" for its end.
struct Input {
    using Pairs = std::initializer_list<std::pair<std::string_view, std::string>>;

    explicit Input(Pairs options) {
        MeasureDefinition definition{"Ask", "Plugin", "InputText.dll", {}};
        for (const auto& [key, value] : options)
            definition.allOptions.set(key, value);
        measure = std::make_unique<InputTextMeasure>(definition, "/s.ini", host);
    }

    std::vector<std::string> afterCommand(std::string_view command) {
        log.clear();
        measure->executeCommand(command);
        return log;
    }

    MeasureTable host;
    std::vector<std::string>& log = host.log;
    std::unique_ptr<InputTextMeasure> measure;
};

std::string answered(Input::Pairs options, std::string_view answer) {
    Input input(options);
    input.measure->executeCommand("ExecuteBatch 1");
    input.measure->submitInput(answer);
    return input.measure->value().stringValue;
}

} // namespace

TEST(InputTextMeasure, runsTheCommandsOfARange) {
    Input input({{"Command1", "one"}, {"COMMAND2", "two"}, {"Command4", "four"}, {"Command0", "zero"},
        {"CommandX", "x"}, {"Command9223372036854775807", "last"}});
    const struct {
        std::string_view command;
        std::vector<std::string> actions;
    } rows[] = {
        {"ExecuteBatch All", {"one", "two"}},
        {" executebatch  what ", {"one", "two"}},
        {"ExecuteBatch 2", {"two"}},
        {"ExecuteBatch 2-4", {"two"}},
        {"ExecuteBatch 1 - 1", {"one"}},
        {"ExecuteBatch 4-9", {"four"}},
        {"ExecuteBatch 3-2", {}},
        {"ExecuteBatch 0-2", {}},
        {"ExecuteBatch -2", {}},
        {"ExecuteBatch 1-", {"one", "two"}},
        {"ExecuteBatch 9223372036854775807", {"last"}},
        {"Other All", {}},
        {"  ", {}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(input.afterCommand(row.command), row.actions) << row.command;
}

TEST(InputTextMeasure, holdsTheRestOfABatchUntilTheAnswer) {
    Input input({{"Command1", "first"}, {"Command2", "[$userinput$][$UserInput$]"}, {"Command3", "third"},
        {"Command4", "$UserInput$"}, {"OnDismissAction", "gone"}});
    EXPECT_THAT(input.afterCommand("ExecuteBatch All"), ElementsAre("first", "?"));
    EXPECT_THAT(input.afterCommand("ExecuteBatch 1"), ElementsAre()) << "queues behind the open prompt";
    input.measure->submitInput("$1\\0");
    EXPECT_THAT(input.log, ElementsAre("x", "[$1\\0][$1\\0]", "third", "?"));
    input.log.clear();
    input.measure->dismissInput();
    EXPECT_THAT(input.log, ElementsAre("x", "gone")) << "what waited behind is dropped";
    input.measure->dismissInput();
    input.measure->submitInput("late");
    EXPECT_EQ(input.log.size(), 2U);
    EXPECT_EQ(input.measure->value().stringValue, "$1\\0");
}

TEST(InputTextMeasure, asksForAVariable) {
    Input input({});
    EXPECT_THAT(input.afterCommand("MyVar"), ElementsAre("?"));
    input.measure->submitInput("a b");
    EXPECT_THAT(input.log, ElementsAre("?", "x", "!SetVariable MyVar \"a b\""));
    EXPECT_THAT(input.afterCommand("ExecuteBatch"), ElementsAre("?")) << "without a range it is a name too";
}

TEST(InputTextMeasure, keepsItsOrderWhenAnActionComesBack) {
    Input input({{"Command1", "again"}, {"Command2", "after"}});
    input.host.onAction = [&](std::string_view) {
        if (input.log.size() == 1)
            input.measure->executeCommand("ExecuteBatch 2");
    };
    EXPECT_THAT(input.afterCommand("ExecuteBatch All"), ElementsAre("again", "after", "after"));

    Input asking({{"Command1", "again"}, {"Command2", "after"}, {"Command4", "$UserInput$"}, {"Command5", "last"}});
    asking.host.onAction = [&](std::string_view action) {
        if (action == "again")
            asking.measure->executeCommand("ExecuteBatch 4-5");
    };
    EXPECT_THAT(asking.afterCommand("ExecuteBatch All"), ElementsAre("again", "after", "?", "last"))
        << "the outer run goes on with what the inner one left behind its prompt";
}

TEST(InputTextMeasure, holdsABoundedNumberOfCommands) {
    Input input({{"Command1", "$UserInput$"}, {"Command2", "x"}});
    for (int i = 0; i < 10000; ++i)
        input.measure->executeCommand(i == 0 ? "ExecuteBatch 1" : "ExecuteBatch 2");
    input.log.clear();
    input.measure->submitInput("");
    EXPECT_LE(input.log.size(), 5000U);
}

TEST(InputTextMeasure, filtersTheAnswer) {
    const std::string command = "$UserInput$";
    EXPECT_EQ(answered({{"Command1", command}, {"InputNumber", "1"}}, "-12.5.6a-"), "-12.56");
    EXPECT_EQ(answered({{"Command1", command}, {"InputNumber", "yes"}}, "a-\xD9\xA3"), "-\xD9\xA3");
    EXPECT_EQ(answered({{"Command1", command}, {"InputLimit", "3"}}, "abcdef"), "abc");
    EXPECT_EQ(answered({{"Command1", command}, {"InputLimit", "2"}}, "a\xCC\x88\xF0\x9F\x98\x80z"),
        "a\xCC\x88\xF0\x9F\x98\x80");
    EXPECT_EQ(answered({{"Command1", command}, {"InputLimit", "0"}}, "abcdef"), "abcdef");
    EXPECT_EQ(answered({{"Command1", command}, {"InputLimit", "3"}, {"InputNumber", "1"}}, "a1b2c3d4"), "123");
}

TEST(InputTextMeasure, describesItsField) {
    Input plain({{"W", "-5"}, {"H", "0.5"}, {"X", "7r"}, {"Y", "abc"}, {"FocusDismiss", "maybe"}});
    InputTextPresentation expected;
    expected.measureName = "Ask";
    expected.frame = {7, 0, 120, 1};
    EXPECT_EQ(plain.measure->presentation(), expected);

    Input full({{"H", "30"}, {"DefaultValue", " \" x \" "}, {"FocusDismiss", "Off"}, {"Password", "TRUE"},
        {"InputLimit", " 4 "}, {"InputNumber", "on"}});
    expected.frame = {0, 0, 120, 30};
    expected.defaultValue = " x ";
    expected.focusDismiss = false;
    expected.isPassword = expected.numericOnly = true;
    expected.inputLimit = 4;
    EXPECT_EQ(full.measure->presentation(), expected);
    EXPECT_TRUE(full.measure->value().preferStringValue);
    EXPECT_EQ(full.measure->value().maxValue, 0);
}

} // namespace Ostrel
