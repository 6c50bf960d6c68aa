#include "OstrelEngine/Runtime/ActionSkin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {

namespace {

using testing::ElementsAre;

constexpr std::string_view SkinText = R"([Rainmeter]
Update=1000
[Variables]
Width=10
Name=start
[Count]
Measure=Calc
Formula=Count+1
Group=Numbers
[Still]
Measure=Calc
Formula=7
Group=numbers | other
UpdateDivider=-1
[Ask]
Measure=Plugin
Plugin=InputText
Command1=[!SetVariable Answer "$UserInput$"]
OnDismissAction=[!SetVariable Answer gone]
[A]
Meter=String
Text=a
X=5
W=20
H=10
Group=Left
[B]
Meter=String
Text=b
X=#Late#
Y=30
W=10
H=10
Group=Left|Right
)";

using Log = std::vector<std::string>;

} // namespace

TEST(BangOperations, publishOnceForAWholeActionString) {
    ActionSkin skin(SkinText);
    const struct {
        std::string_view action;
        Log log;
    } rows[] = {
        {"", {}},
        {"[!Show A][!Nonsense]", {}},
        {"[!SetVariable X 1][!UpdateMeter *][!Redraw]", {"publish", "handled"}},
        {"[!HideMeter A][!ShowMeter A][!HideMeter A]", {"publish", "handled"}},
        {"[!HideMeter A]", {"handled"}},
        {"!ToggleMeter a", {"publish", "handled"}},
        {"[!ToggleMeter Missing][!ShowMeter]", {"handled"}},
        {"[!SetVariable X 1]", {}},
        {"[!SetVariable X]", {}},
        {"[!SetVariable X 2]", {"handled"}},
        {"[!SetOption A Text a]", {}},
        {"[!Log x][!SetOption A Text a]", {"publish", "handled"}},
        {"[!SetOption A Text new]", {"publish", "handled"}},
        {"[!UpdateMeasure Missing]", {"publish", "handled"}},
        {"[!UpdateMeasure Missing][!HideMeter Missing]", {"handled"}},
        {"[!Update][!RefreshGroup x][!Log]", {"publish", "handled"}},
        {"!Execute [!HideMeter B][!ShowMeter B]", {"publish", "handled"}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(skin.run(row.action), row.log) << row.action;
}

TEST(BangOperations, showAndHideGroups) {
    ActionSkin skin(SkinText);
    EXPECT_THAT(skin.run("[!HideMeterGroup \" left \"]"), ElementsAre("publish", "handled"));
    EXPECT_EQ(skin.shown(), "");
    skin.run("[!ShowFadeGroup Right]");
    EXPECT_EQ(skin.shown(), "B");
    skin.run("[!SetOption A Group Other][!HideFadeGroup Left][!ShowMeterGroup other]");
    EXPECT_EQ(skin.shown(), "A") << "membership follows the option";
}

TEST(BangOperations, askTheHost) {
    ActionSkin skin(SkinText);
    const auto& pack = skin.pack;
    const struct {
        std::string_view action;
        Log log;
    } rows[] = {
        {"[!Refresh]", {"refresh", "handled"}},
        {"[!Refresh \"*\"]", {"refreshApp", "handled"}},
        {"[!Refresh * x][!Refresh **]", {"refreshApp", "refresh", "handled"}},
        {"[!RainmeterRefreshApp]", {"refreshApp", "handled"}},
        {"[!DeactivateConfig]", {"deactivate", "handled"}},
        {"[!DeactivateConfig Pack\\Clock x.ini]", {"deactivate " + pack + "/Clock/x.ini", "handled"}},
        {"[!ActivateConfig]", {"handled"}},
        {"[!ActivateConfig pack\\Clock]", {"activate " + pack + "/Clock/skin.ini", "handled"}},
        {"[!ToggleConfig Other y.ini]", {"toggle " + pack + "/Other/y.ini", "handled"}},
        {"https://example.org/a rest", {"url https://example.org/a", "handled"}},
        {"[\"my notes.txt\"][!Nonsense]", {"file " + pack + "/Skin/my notes.txt", "handled"}},
        {"[\"\"]", {}},
        {"[!CommandMeasure Ask \"ExecuteBatch 1\"]", {"input Ask", "handled"}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(skin.run(row.action), row.log) << row.action;
}

TEST(BangOperations, controlMeasures) {
    ActionSkin skin(SkinText);
    const auto number = [&](std::string_view name) { return skin.runtime->measure(name)->value().numericValue; };
    skin.runtime->start();
    EXPECT_EQ(number("Count"), 1);
    skin.run("[!PauseMeasure count][!DisableMeasure Still]");
    skin.runtime->performUpdate();
    EXPECT_EQ(number("Count"), 1);
    skin.run("[!UpdateMeasure Count][!UpdateMeasureGroup numbers][!UpdateMeasureGroup]");
    EXPECT_EQ(number("Count"), 3) << "a paused measure is still updated by a bang";
    skin.run("[!UnpauseMeasureGroup Numbers]");
    skin.runtime->performUpdate();
    EXPECT_EQ(number("Count"), 4);
    skin.run("[!DisableMeasureGroup Numbers]");
    skin.runtime->performUpdate();
    EXPECT_EQ(number("Count"), 4);
    skin.run("[!SetOption Count Disabled 1][!EnableMeasure Count]");
    skin.runtime->performUpdate();
    EXPECT_EQ(number("Count"), 5) << "the bang beats the option";
}

TEST(BangOperations, resolveTheirValues) {
    ActionSkin skin(SkinText);
    const struct {
        std::string_view written;
        std::string_view stored;
    } rows[] = {
        {"10*2", "20"},
        {"#Width#+5", "15"},
        {"(1/3)", "0.333333"},
        {"05", "05"},
        {"[A:X]", "5"},
        {"[A:X]*2+[Missing:W]", "10"},
        {"[Count]", "[Count]"},
        {"Count+1", "Count+1"},
        {"a-b", "a-b"},
        {"1/0", "1/0"},
        {"MAX(1,2)", "2"},
        {"#Nothing# x", "#Nothing# x"},
        {"#NAME#", "start"},
        {"", ""},
    };
    for (const auto& row : rows) {
        skin.run("[!SetVariable V \"" + std::string(row.written) + "\"]");
        EXPECT_EQ(skin.variable("V"), row.stored) << row.written;
    }
}

TEST(BangOperations, setOptionsOfMetersMeasuresAndGroups) {
    ActionSkin skin(SkinText);
    skin.runtime->start();
    EXPECT_THAT(skin.run("[!SetOption a W #Width#*3]"), ElementsAre("publish", "handled"));
    EXPECT_EQ(skin.runtime->meters()[0]->frame().w, 30) << "a sensitive option lays out again";
    skin.run("[!SetVariable Late 7][!Redraw][!SetOption B Y [A:W]]");
    EXPECT_EQ(skin.runtime->meters()[1]->frame().y, 54);
    skin.run("[!SetOptionGroup Left Hidden 1]");
    EXPECT_EQ(skin.shown(), "");
    skin.run("[!ShowMeter A][!SetOption A Hidden 1]");
    EXPECT_EQ(skin.shown(), "") << "the same text hides again";
    EXPECT_THAT(skin.run("[!SetOptionGroup Numbers Formula 3]"), ElementsAre()) << "measures alone are no change";
    EXPECT_EQ(skin.runtime->measure("Count")->options().find("Formula"_key)->compare("3"), 0);
    skin.run("[!SetOption Still UpdateDivider -7][!SetOption Count UpdateDivider x]");
    EXPECT_EQ(skin.runtime->measure("Still")->updateDivider(), -1);
    EXPECT_EQ(skin.runtime->measure("Count")->updateDivider(), 1);
    EXPECT_THAT(skin.run("[!SetOption Rainmeter Update 100][!SetOption Missing X 1][!SetOption A X]"), ElementsAre());
}

TEST(BangOperations, writeKeysAndFollowThemInVariables) {
    ActionSkin skin(SkinText);
    EXPECT_THAT(skin.run("[!WriteKeyValue variables \" Name \" new]"), ElementsAre("handled"));
    EXPECT_NE(skin.fileText().find("\nName=new\n"), std::string::npos) << skin.fileText();
    EXPECT_EQ(skin.variable(" Name "), "new");
    EXPECT_EQ(skin.variable("Name"), "start");
    EXPECT_THAT(skin.run("[!WriteKeyValue A X #Width#+1 #@#made.inc][!WriteKeyValue A X]"), ElementsAre("handled"));
    EXPECT_EQ(DiskFileProvider().contentsOfFile(skin.pack + "/@Resources/made.inc"), "[A]\nX=11");
    EXPECT_THAT(skin.run("[!WriteKeyValue A X 1 \"#CURRENTPATH#\"]"), ElementsAre()) << "a folder";
}

TEST(BangOperations, layOutWhereAVariableMovesAMeter) {
    ActionSkin skin(SkinText);
    const auto publishes = [&](std::string_view action) {
        skin.run(action);
        skin.log.clear();
        skin.fakes.clock.uptime += 10;
        skin.runtime->performUpdate();
        return !skin.log.empty();
    };
    publishes("[!PauseMeasureGroup Numbers]");
    // Such a write alone asks for no publication, so one that comes is the layout's.
    EXPECT_FALSE(publishes("[!WriteKeyValue Variables Other 1]"));
    EXPECT_TRUE(publishes("[!WriteKeyValue Variables late 1]"));
    skin.run("[!SetOption A W \"#Fifth#\"]");
    EXPECT_TRUE(publishes("[!WriteKeyValue Variables Fifth 3]")) << "an option that changed is looked at again";
}

TEST(BangOperations, notifyOfEveryChangeOfState) {
    ActionSkin skin(SkinText);
    int changes = 0;
    skin.host.onStateChange = [&](const WidgetRuntimeState& state) {
        ++changes;
        EXPECT_EQ(state.variables.at("Name"), "start");
    };
    skin.run("[!SetVariable X 1][!SetVariable X 1][!HideMeter A][!HideMeter A][!SetOption A Text z]");
    EXPECT_EQ(changes, 2);
    skin.run("[!WriteKeyValue Variables X 2][!WriteKeyValue Variables X 2]");
    EXPECT_EQ(changes, 3);
}

TEST(BangOperations, askForInputAndAnswerThroughTheMeasure) {
    ActionSkin skin(SkinText);
    skin.run("[!PluginBang \"Ask ExecuteBatch 1\"]");
    skin.runtime->submitInputText("ASK", "two words");
    EXPECT_EQ(skin.variable("Answer"), "two words");
    skin.run("[!CommandMeasure Ask \"ExecuteBatch 1\"][!CommandMeasure Missing x][!CommandMeasure Ask]");
    skin.runtime->dismissInputText("Ask");
    EXPECT_EQ(skin.variable("Answer"), "gone");
    skin.runtime->submitInputText("Count", "x");
}

TEST(BangOperations, boundTextsThatGrowByThemselves) {
    ActionSkin skin(SkinText);
    for (int i = 0; i < 64; ++i)
        skin.run("[!SetVariable Name \"#Name##Name#\"][!SetOption A Text \"[A:X]#Name#\"]");
    EXPECT_LE(skin.variable("Name").size(), std::size_t(1) << 21);
}

} // namespace Ostrel
