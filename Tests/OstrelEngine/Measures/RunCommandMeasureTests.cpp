#include "OstrelEngine/Measures/MeasureTable.h"
#include "Support/FakePlatform.h"
#include "Support/FakeWorkspace.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace Ostrel {

namespace {

/// A pack with a nested skin, and a workspace that tells what it was asked to start.
class RunCommandTest : public testing::Test {
protected:
    RunCommandTest() {
        folder.write("Pack/@Resources/tool", "");
        folder.write("Pack/@Resources/Setup.EXE", "");
        folder.write("Pack/Skin/Deep/local", "");
    }

    BaseMeasure& make(std::string_view program, std::string_view parameter = "") {
        MeasureDefinition definition{"Run", "Plugin", "RunCommand.dll", {}};
        definition.allOptions.set("Program", std::string(program));
        definition.allOptions.set("Parameter", std::string(parameter));
        fake.platform.workspace = &workspace;
        measure = MeasureFactory::create(definition, skinFolder() + "/skin.ini", fake.platform, host);
        return *measure;
    }
    std::string skinFolder() const { return folder.path() + "/Pack/Skin/Deep"; }
    std::string resources() const { return folder.path() + "/Pack/@Resources"; }
    /// What the skin can read of the outcome.
    std::string outcome() const {
        const auto& value = measure->value();
        return value.stringValue + (value.preferStringValue ? "!" : "") + " "
            + std::to_string(static_cast<int>(value.numericValue)) + " of "
            + std::to_string(static_cast<int>(value.minValue)) + ".."
            + std::to_string(static_cast<int>(value.maxValue));
    }

    TemporaryFolder folder;
    std::vector<std::string> log;
    FakeWorkspace workspace{log};
    FakePlatform fake;
    MeasureTable host;
    std::unique_ptr<BaseMeasure> measure;
};

} // namespace

TEST_F(RunCommandTest, findsItsProgram) {
    const struct {
        std::string program, request, outcome;
    } rows[] = {
        {"#@#tool", "launch " + resources() + "/tool", "1 1 of 0..1"},
        {"#@#TOOL", "launch " + resources() + "/tool", "1 1 of 0..1"},
        {"#CurrentPath#local", "launch " + skinFolder() + "/local", "1 1 of 0..1"},
        {"local", "launch " + skinFolder() + "/local", "1 1 of 0..1"},
        {"..\\..\\@resources\\Tool", "launch " + skinFolder() + "/../../@Resources/tool", "1 1 of 0..1"},
        {" \"'\"/bin/echo\"'\" ", "launch /bin/echo", "1 1 of 0..1"},
        {"\\bin\\echo", "launch /bin/echo", "1 1 of 0..1"},
        {"https://example.org/a b", "url https://example.org/a b", "1 1 of 0..1"},
        {"MAILTO:a@example.org", "url MAILTO:a@example.org", "1 1 of 0..1"},
        {"x-tool.2+a:", "url x-tool.2+a:", "1 1 of 0..1"},
        {"C:\\Tools\\run.exe", "", "UNSUPPORTED_EXECUTABLE! 0 of 0..0"},
        {"C:\\Tools\\run", "", "NOT_FOUND! 0 of 0..0"},
        {"1http://example.org", "", "NOT_FOUND! 0 of 0..0"},
        {"#@#Setup.exe", "", "UNSUPPORTED_EXECUTABLE! 0 of 0..0"},
        {"nothing", "", "NOT_FOUND! 0 of 0..0"},
        {"/bin/echo -n", "", "NOT_FOUND! 0 of 0..0"},
        {"\"local", "", "NOT_FOUND! 0 of 0..0"},
        {" ", "", "! 0 of 0..0"},
        {"\"''\"", "", "! 0 of 0..0"},
    };
    for (const auto& row : rows) {
        log.clear();
        make(row.program).executeCommand("Run");
        EXPECT_EQ(log, row.request.empty() ? std::vector<std::string>() : std::vector{row.request}) << row.program;
        EXPECT_EQ(outcome(), row.outcome) << row.program;
    }
}

TEST_F(RunCommandTest, dividesItsParameterIntoWords) {
    const struct {
        std::string_view parameter, words;
    } rows[] = {
        {"-a \"b c\" 'd e'", " <-a> <b c> <d e>"},
        {"a\"b c\"d", " <ab cd>"},
        {"x \"\" '' y", " <x> <y>"},
        {"x 'it\"s' \"it's\" z", " <x> <it\"s> <it's> <z>"},
        {"x \"never closed  ", " <x> <never closed>"},
        {"\"a b\"", " <a> <b>"},
        {"'\"a\" b'", " <a> <b>"},
        {"a\xC2\xA0\xC3\xA9\tc\\ d", " <a> <\xC3\xA9> <c\\> <d>"},
        {"$HOME;`id`|x >y", " <$HOME;`id`|x> <>y>"},
        {"", ""},
    };
    for (const auto& row : rows) {
        log.clear();
        make("local", row.parameter).executeCommand("");
        EXPECT_THAT(log, testing::ElementsAre("launch " + skinFolder() + "/local" + std::string(row.words)))
            << row.parameter;
    }
}

TEST_F(RunCommandTest, runsOnCommandAloneAndWithItsOptionsOfThatMoment) {
    auto& command = make("nothing");
    command.update();
    for (const char* other : {"Stop", "Close", "Run now", "Kill"})
        command.executeCommand(other);
    EXPECT_EQ(outcome(), "! 0 of 0..0");
    command.executeCommand(" rUn\n");
    EXPECT_EQ(outcome(), "NOT_FOUND! 0 of 0..0");
    command.setOption("Program", "local");
    command.setOption("Parameter", "now");
    command.update();
    EXPECT_EQ(outcome(), "NOT_FOUND! 0 of 0..0") << "the outcome stands";
    command.executeCommand("  ");
    EXPECT_THAT(log, testing::ElementsAre("launch " + skinFolder() + "/local <now>"));
    EXPECT_EQ(outcome(), "1 1 of 0..1");
}

TEST_F(RunCommandTest, tellsThatNothingCouldBeStarted) {
    workspace.answer = false;
    make(skinFolder()).executeCommand("");
    EXPECT_EQ(outcome(), "LAUNCH_FAILED! 0 of 0..0");
    make("http:x").executeCommand("");
    EXPECT_EQ(outcome(), "1 1 of 0..1") << "whether a URL was opened is not looked at";
    make("local");
    fake.platform.workspace = nullptr;
    measure = MeasureFactory::create(measure->definition(), measure->skinPath(), fake.platform, host);
    measure->executeCommand("");
    EXPECT_EQ(outcome(), "LAUNCH_FAILED! 0 of 0..0");
}

} // namespace Ostrel
