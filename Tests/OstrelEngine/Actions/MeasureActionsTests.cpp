#include "OstrelEngine/Runtime/ActionSkin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {

namespace {

using testing::ElementsAre;

/// The skin of a number N and a text T that the test sets, with one measure M over them that has the given options.
/// Actions of M append a letter to what `log` gives.
class Observed {
public:
    explicit Observed(std::string_view options, std::string_view type = "Calc\nFormula=N")
        : skin("[N]\nMeasure=Calc\nFormula=0\n[T]\nMeasure=String\nString=x\n[M]\nMeasure=" + std::string(type) + "\n"
            + std::string(options)) { }

    /// What the actions wrote while the measures updated, after N was set to each number in turn.
    std::vector<std::string> afterNumbers(std::initializer_list<std::string_view> numbers) {
        return after("N Formula", numbers);
    }
    std::vector<std::string> afterTexts(std::initializer_list<std::string_view> texts) {
        return after("T String", texts);
    }
    std::string afterUpdate() {
        skin.run("[!SetVariable Log \"\"]");
        skin.runtime->performUpdate();
        return skin.variable("Log");
    }

    ActionSkin skin;

private:
    std::vector<std::string> after(const std::string& option, std::initializer_list<std::string_view> values) {
        std::vector<std::string> results;
        for (const auto value : values) {
            skin.run("[!SetOption " + option + " \"" + std::string(value) + "\"]");
            results.push_back(afterUpdate());
        }
        return results;
    }
};

/// Appends a letter to the log. The value is a text, so that no arithmetic is tried.
std::string note(char letter) {
    return std::string("[!SetVariable Log \"#Log#") + letter + "\"]";
}

} // namespace

TEST(MeasureActions, fireOncePerCrossing) {
    Observed above("IfAboveValue=50\nIfAboveAction=" + note('a') + "\nIfBelowValue=10*2\nIfBelowAction=" + note('b'));
    EXPECT_THAT(above.afterNumbers({"60", "70", "40", "60", "50", "10", "5", "20", "19"}),
        ElementsAre("a", "", "", "a", "", "b", "", "", "b"));
    Observed equal("IfEqualValue=3\nIfEqualAction=" + note('e'));
    EXPECT_THAT(equal.afterNumbers({"3.7", "3.2", "-3.7", "2.9", "3"}), ElementsAre("e", "", "", "", "e"));
    Observed frozen("IfEqualValue=Gone\nIfEqualAction=" + note('e') + "\nIfAboveValue=1\nIfBelowAction=" + note('b'));
    EXPECT_THAT(frozen.afterNumbers({"0", "5"}), ElementsAre("", ""));
}

TEST(MeasureActions, runInOrder) {
    Observed all("IfMatchAction=" + note('m') + "\nIfMatch=.*\nIfCondition=1\nIfTrueAction=" + note('t')
        + "\nIfEqualValue=4\nIfEqualAction=" + note('e') + "\nIfAboveValue=3\nIfAboveAction=" + note('a')
        + "\nIfBelowValue=5\nIfBelowAction=" + note('b') + "\nOnUpdateAction=" + note('u')
        + "\nOnChangeAction=" + note('c'));
    EXPECT_THAT(all.afterNumbers({"4", "4", "4.5"}), ElementsAre("cueabtm", "u", "cu"));
}

TEST(MeasureActions, conditionsRunTheSideThatTurned) {
    Observed turns("IfCondition=M > 5\nIfTrueAction=" + note('t') + "\nIfFalseAction=" + note('f'));
    EXPECT_THAT(turns.afterNumbers({"0", "1", "6", "7", "2"}), ElementsAre("f", "", "t", "", "f"));
    Observed always("IfCondition=M > 5\nIfConditionMode=#Mode#\nIfTrueAction=" + note('t'));
    always.skin.run("[!SetVariable Mode 0+1]");
    EXPECT_THAT(always.afterNumbers({"6", "7", "2", "8"}), ElementsAre("t", "t", "", "t"));
    always.skin.run("[!SetVariable Mode false]");
    EXPECT_THAT(always.afterNumbers({"9", "1", "9"}), ElementsAre("", "", "t"));
}

TEST(MeasureActions, readTheirNumberedOptions) {
    Observed numbered("IfCondition3=N=1\nIfTrueAction3=" + note('3') + "\nIfCondition9=1\nIfTrueAction9=" + note('9')
        + "\nIfCondition1=1\nIfTrueAction1=" + note('1') + "\nIfCondition2=N<>1 or\nIfFalseAction2=" + note('2')
        + "\nIfCondition8=N=1 and N<2\nIfFalseAction8=" + note('8'));
    EXPECT_THAT(numbered.afterNumbers({"1", "0", "1"}), ElementsAre("3", "8", "3"));
}

TEST(MeasureActions, matchTheText) {
    Observed matches("IfMatch=ab\nIfMatchAction=" + note('m') + "\nIfNotMatchAction=" + note('n') + "\nIfMatch2=(\n"
            + "IfMatchAction2=" + note('x') + "\nIfMatch3=^$\nIfMatchMode=1\nIfMatchAction3=" + note('e'),
        "String\nString=[T]");
    EXPECT_THAT(matches.afterTexts({"cabd", "ab", "AB", "", "ab"}), ElementsAre("m", "m", "n", "ne", "m"));
}

TEST(MeasureActions, surviveAHostilePattern) {
    Observed hostile("IfMatch=(a+)+$\nIfMatchAction=" + note('m') + "\nIfNotMatchAction=" + note('n') + "\nIfMatch2=z"
            + "\nIfNotMatchAction2=" + note('z'),
        "String\nString=[T]");
    EXPECT_THAT(hostile.afterTexts({std::string(40, 'a') + "b"}), ElementsAre("nz"));
}

TEST(MeasureActions, fireAnewAfterAnOptionChanged) {
    Observed observed("IfCondition=1\nIfTrueAction=" + note('t'));
    EXPECT_EQ(observed.afterUpdate(), "t");
    EXPECT_EQ(observed.afterUpdate(), "");
    observed.skin.run("[!SetOption M Any thing]");
    EXPECT_EQ(observed.afterUpdate(), "t");
    observed.skin.run("[!SetOption M IfTrueAction \"!SetVariable Log new\"]");
    EXPECT_EQ(observed.afterUpdate(), "new");
    observed.skin.runtime->start();
    EXPECT_EQ(observed.skin.variable("Log"), "new");
    observed.skin.run("[!SetVariable Log \"\"]");
    observed.skin.runtime->start();
    EXPECT_EQ(observed.skin.variable("Log"), "new") << "a start forgets what has run";
}

TEST(MeasureActions, keepTheirStateOverAChangeFromTheirOwnAction) {
    Observed observed("IfCondition=1\nIfTrueAction=[!SetOption M Any thing]" + note('t'));
    EXPECT_EQ(observed.afterUpdate(), "t");
    EXPECT_EQ(observed.afterUpdate(), "") << "the run's own state is stored last";
}

TEST(MeasureActions, doNotPublishOneByOne) {
    Observed observed("OnUpdateAction=[!Redraw][!UpdateMeter *]");
    observed.skin.fakes.clock.uptime = 10;
    observed.skin.runtime->performUpdate();
    observed.skin.log.clear();
    observed.skin.fakes.clock.uptime += 10;
    observed.skin.runtime->performUpdate();
    EXPECT_THAT(observed.skin.log, ElementsAre()) << "nothing changed, so even the tick has nothing to show";
    observed.skin.run("[!SetOption M OnUpdateAction \"!SetVariable Log x\"]");
    observed.skin.log.clear();
    observed.skin.fakes.clock.uptime += 10;
    observed.skin.runtime->performUpdate();
    EXPECT_THAT(observed.skin.log, ElementsAre("publish"));
}

TEST(MeasureActions, loopsEndBeforeTheStackDoes) {
    Observed observed("OnUpdateAction=[!UpdateMeasure M][!UpdateMeasure M][!SetVariable After 1]");
    observed.skin.runtime->performUpdate();
    EXPECT_EQ(observed.skin.variable("After"), "1");
    Observed input(
        "OnUpdateAction=[!CommandMeasure M \"ExecuteBatch All\"]\nCommand1=[!CommandMeasure M \"ExecuteBatch 1\"]"
        "[!SetVariable After 1]",
        "Plugin\nPlugin=InputText");
    input.skin.runtime->performUpdate();
    EXPECT_EQ(input.skin.variable("After"), "1");
}

TEST(MeasureActions, ofARunningSkinFrameItsLife) {
    ActionSkin skin(
        "[Rainmeter]\nOnRefreshAction=[!SetVariable Log \"#Log#r#Ticked#\"]\nOnCloseAction=[!SetVariable Log "
        "\"#Log#c#Ticked#\"][!DeactivateConfig]\n[M]\nMeasure=Calc\nFormula=1\n"
        "OnUpdateAction=[!SetVariable Ticked 1]\n");
    skin.run("[!SetVariable Log \"\"]");
    skin.runtime->start();
    EXPECT_EQ(skin.variable("Log"), "c#Ticked#r1");
    skin.runtime->stop();
    EXPECT_EQ(skin.variable("Log"), "c#Ticked#r1c1");
}

TEST(MeasureActions, ofTheMouseRunOnMeasures) {
    ActionSkin skin(
        "[Mouse]\nMeasure=Plugin\nPlugin=Mouse.dll\nLeftMouseUpAction=[!SetVariable P \"$MouseX:%$ $MouseY$\"]\n"
        "MouseScrollUpAction= \n[Off]\nMeasure=Plugin\nPlugin=Mouse\nDisabled=1\n"
        "LeftMouseUpAction=[!SetVariable Q \"#Q#x\"]\n[A]\nMeter=String\nX=10\nY=30\nW=40\nH=20\n");
    EXPECT_TRUE(skin.runtime->handleMouseEvent(MouseEventKind::leftUp, {20, 40.5}, "a"));
    EXPECT_EQ(skin.variable("P"), "25 40.5");
    EXPECT_EQ(skin.variable("Q"), "(none)");
    EXPECT_FALSE(skin.runtime->handleMouseEvent(MouseEventKind::scrollUp, {20, 40}, std::nullopt));
    skin.run("[!EnableMeasure Off][!PauseMeasure Mouse]");
    skin.runtime->handleMouseEvent(MouseEventKind::leftUp, {1, 2}, std::nullopt);
    EXPECT_EQ(skin.variable("P"), "0 2") << "a paused measure still answers";
    EXPECT_EQ(skin.variable("Q"), "#Q#x");
}

} // namespace Ostrel
