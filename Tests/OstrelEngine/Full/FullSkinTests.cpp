#include "Support/RunningFullSkin.h"

#include <gmock/gmock.h>

#include <gtest/gtest.h>

namespace Ostrel {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr auto Count = "[C]\nMeasure=Calc\nFormula=C+1\n";

TEST(FullSkinTests, updatesWhatIsDue) {
    RunningFullSkin skin(std::string("[Rainmeter]\nUpdate=500\nDefaultUpdateDivider=2\n")
        + "[Each]\nMeasure=Calc\nFormula=Each+1\nUpdateDivider=1\n"
          "[Third]\nMeasure=Calc\nFormula=Third+1\nUpdateDivider=(1+2)\n"
          "[Default]\nMeasure=Calc\nFormula=Default+1\n"
          "[Once]\nMeasure=Calc\nFormula=Once+1\nUpdateDivider=-1\n"
          "[Zero]\nMeasure=Calc\nFormula=Zero+1\nUpdateDivider=0\n"
          "[Cycle]\nMeasure=Calc\nFormula=Counter\nUpdateDivider=1\n"
          // Reads what stands below: the value of the last update.
          "[Before]\nMeasure=Calc\nFormula=After\nUpdateDivider=1\n[After]\nMeasure=Calc\nFormula=After+1\n"
          "UpdateDivider=1\n"
          "[M]\nMeter=Box\nOnUpdateAction=[!SetVariable Meters (#Meters#+1)][!SetVariable Now ([#Now]+1)]\n"
          "UpdateDivider=3\n[Variables]\nMeters=0\nNow=0\n");
    skin.skin->start();
    EXPECT_EQ(skin.number("Third"), 1);
    EXPECT_EQ(skin.number("Before"), 0);
    EXPECT_EQ(skin.number("Cycle"), 0);
    EXPECT_EQ(skin.skin->updateIntervalSeconds(), 0.5);
    skin.tick(3);
    // Updates 1 and 4; 1 and 3; 1.
    EXPECT_EQ(skin.number("Each"), 4);
    EXPECT_EQ(skin.number("Third"), 2);
    EXPECT_EQ(skin.number("Default"), 2);
    EXPECT_EQ(skin.number("Once"), 1);
    EXPECT_EQ(skin.number("Zero"), 4);
    EXPECT_EQ(skin.number("Before"), 3);
    EXPECT_EQ(skin.number("Cycle"), 3);
    // `#V#` is what it was when the section was read, `[#V]` what it is.
    EXPECT_EQ(skin.variable("Meters"), "1");
    EXPECT_EQ(skin.variable("Now"), "2");
    // A bang reaches what is not due and does not disturb its count.
    skin.run("[!UpdateMeasure Third][!UpdateMeter M]");
    EXPECT_EQ(skin.number("Third"), 3);
    EXPECT_EQ(skin.variable("Now"), "3");
    skin.tick(2);
    EXPECT_EQ(skin.number("Third"), 3);
    skin.tick();
    EXPECT_EQ(skin.number("Third"), 4);
    EXPECT_EQ(skin.host.published, 7);
}

TEST(FullSkinTests, updatesOnlyByBangsWhenUpdateIsNegative) {
    RunningFullSkin skin(std::string("[Rainmeter]\nUpdate=-1\nOnRefreshAction=[!SetVariable R [C:]]\n") + Count);
    skin.skin->start();
    skin.tick(3);
    EXPECT_EQ(skin.number("C"), 1);
    EXPECT_EQ(skin.variable("R"), "1");
    skin.run("!Update");
    EXPECT_EQ(skin.number("C"), 2);
    EXPECT_EQ(skin.skin->tickCount(), 2);
    skin.run("!RainmeterRedraw");
    EXPECT_EQ(skin.number("C"), 2);
    EXPECT_EQ(skin.host.published, 3);
}

TEST(FullSkinTests, disablesAndPauses) {
    RunningFullSkin skin(std::string(Count)
        + "[S]\nMeasure=String\nString=text\n"
          "[Off]\nMeasure=Calc\nFormula=7\nDisabled=1\nIfAboveValue=5\nIfAboveAction=[!SetVariable Above "
          "([#Above]+1)]\n"
          "[P]\nMeasure=Calc\nFormula=P+1\nPaused=1\nGroup=Some | Others\n[Variables]\nAbove=0\nLate=no\n"
          "[T]\nMeasure=Plugin\nPlugin=ActionTimer\nActionList1=Wait 100|A\nA=[!SetVariable Late yes]\n");
    skin.skin->start();
    EXPECT_EQ(skin.number("Off"), 0);
    EXPECT_EQ(skin.skin->measure("Off")->value().maxValue, 1);
    // The lists of a timer end at once.
    skin.run("[!CommandMeasure T \"Execute 1\"][!DisableMeasure T]");
    skin.time.runFor(0.2);
    EXPECT_EQ(skin.variable("Late"), "no");
    EXPECT_EQ(skin.number("P"), 0);
    skin.run("[!EnableMeasure Off][!DisableMeasure C][!DisableMeasure S]");
    // The number falls at the next cycle.
    EXPECT_EQ(skin.number("C"), 1);
    skin.tick();
    EXPECT_EQ(skin.number("C"), 0);
    EXPECT_EQ(skin.skin->measure("S")->value().stringValue, "text");
    EXPECT_EQ(skin.number("Off"), 7);
    EXPECT_EQ(skin.variable("Above"), "1");
    // An update by bang reaches what is paused and not what is disabled.
    skin.run("[!UpdateMeasure P][!UpdateMeasure C]");
    EXPECT_EQ(skin.number("P"), 1);
    EXPECT_EQ(skin.number("C"), 0);
    skin.run("[!ToggleMeasure Off][!ToggleMeasure Off][!TogglePauseMeasureGroup others]");
    skin.tick();
    // Enabled again: what holds runs again.
    EXPECT_EQ(skin.variable("Above"), "2");
    EXPECT_EQ(skin.number("P"), 2);
    // The option speaks last.
    skin.run("[!SetOption Off Disabled 1]");
    skin.tick();
    EXPECT_EQ(skin.number("Off"), 0);
}

TEST(FullSkinTests, runsTheActionsOfAMeasureInOrder) {
    const auto note = [](std::string_view key, std::string_view text) {
        return std::string(key) + "=[!SetVariable Log \"[#Log]" + std::string(text) + " \"]\n";
    };
    RunningFullSkin skin("[Variables]\nLog=\nV=1\n[Other]\nMeasure=Calc\nFormula=Other+1\n[M]\nMeasure=Calc\n"
                         "Formula=[#V]\nDynamicVariables=1\n"
        + note("OnChangeAction", "change") + note("OnUpdateAction", "update") + "IfMatch=2\n"
        + note("IfMatchAction", "match") + note("IfNotMatchAction", "none") + "IfCondition12=(M = 2) && (Other > 1)\n"
        + note("IfTrueAction12", "true12") + note("IfFalseAction12", "false12") + "IfCondition=M = 2\n"
        + note("IfTrueAction", "true") + "IfCondition1=1\n" + note("IfTrueAction1", "never") + "IfBelowValue=2\n"
        + note("IfBelowAction", "below") + "IfAboveValue=(1 + 0.5)\n" + note("IfAboveAction", "above")
        + "IfEqualValue=2\n" + note("IfEqualAction", "equal"));
    skin.skin->start();
    EXPECT_EQ(skin.variable("Log"), "below false12 none update ");
    skin.run("[!SetVariable Log \"\"][!SetVariable V 2.3]");
    skin.tick();
    EXPECT_EQ(skin.variable("Log"), "equal above match update change ");
    skin.run("[!SetVariable Log \"\"][!SetVariable V 2]");
    skin.tick();
    EXPECT_EQ(skin.variable("Log"), "true true12 update change ");
    skin.run("[!SetVariable Log \"\"][!SetOption M IfTrueAction \"[!SetVariable Log again]\"]");
    skin.tick();
    // Only the block whose option was set begins again.
    EXPECT_EQ(skin.variable("Log"), "againupdate ");
}

TEST(FullSkinTests, readsOptionsAgain) {
    RunningFullSkin skin(std::string("[Variables]\nV=one\nWhich=Base\nWhose=#Which# of #CURRENTSECTION#\n") + Count
        + "[Base]\nTip=base #CURRENTSECTION#\nTitle=of base\n[Strong]\nTip=strong #V#\n"
          "[Static]\nMeter=Box\nText=#V# [C]\nMeterStyle=Base | Strong\n"
          "[Live]\nMeter=Box\nText=#V# [C] [&C:2] [Nobody] [C:/4,1]\nDynamicVariables=1\nMeterStyle=#Which#\n"
          "LeftMouseUpAction=[!Log \"#V# [#V] [C]\"]\n"
          "[Heir]\nMeter=Box\nMeterStyle=Static\nText=#Whose#\n[Again]\nMeter=Box\nText=[C] #V#\n");
    skin.skin->start();
    EXPECT_EQ(skin.option("Static", "Text"), "one [C]");
    EXPECT_EQ(skin.option("Static", "Tip"), "strong one");
    EXPECT_EQ(skin.option("Static", "Title"), "of base");
    EXPECT_EQ(skin.option("Live", "Text"), "one 1 1.00 [Nobody] 0.3");
    EXPECT_EQ(skin.option("Live", "LeftMouseUpAction"), "[!Log \"one [#V] [C]\"]");
    // A meter as a style gives its own options and none that it inherits.
    EXPECT_EQ(skin.option("Heir", "Tip"), "(none)");
    EXPECT_EQ(skin.option("Heir", "Text"), "Base of Heir");

    skin.run("[!SetVariable V two]");
    EXPECT_EQ(skin.option("Live", "Text"), "one 1 1.00 [Nobody] 0.3");
    skin.tick();
    EXPECT_EQ(skin.option("Live", "Text"), "two 2 2.00 [Nobody] 0.5");
    EXPECT_EQ(skin.option("Static", "Text"), "one [C]");

    // A bang makes the section dynamic once; `[C]` stays text but in the option that was set.
    skin.run("[!SetOption Static Title \"[*C*] [C]\"]");
    skin.tick();
    EXPECT_EQ(skin.option("Static", "Title"), "3 2");
    EXPECT_EQ(skin.option("Static", "Text"), "two [C]");
    skin.run("[!SetVariable V three]");
    skin.tick();
    EXPECT_EQ(skin.option("Static", "Text"), "two [C]");
    EXPECT_EQ(skin.option("Static", "Title"), "3 2");

    // Empty: the style shows again.
    skin.run("[!SetOption Static Title \"\"][!SetOption Static Tip own]");
    skin.tick();
    EXPECT_EQ(skin.option("Static", "Title"), "of base");
    EXPECT_EQ(skin.option("Static", "Tip"), "own");
    skin.run("[!SetOption Static Tip \"\"][!SetOption Static MeterStyle Base]");
    skin.run("[!SetVariable Which Strong]");
    skin.tick();
    EXPECT_EQ(skin.option("Static", "Tip"), "base Static");
    EXPECT_EQ(skin.option("Live", "Title"), "(none)");
    EXPECT_EQ(skin.option("Live", "Tip"), "strong three");

    // Set to what the file says already, and yet set.
    skin.run("[!SetOption Again Text \"[*C*] #*V*#\"]");
    skin.tick();
    EXPECT_EQ(skin.option("Again", "Text"), "7 three");
}

TEST(FullSkinTests, keepsWhatOthersSayAsText) {
    RunningFullSkin skin(
        "[T]\nMeasure=String\nString=#*V*# \"][!SetVariable Hit 1][!Log \" [*C*]\n[Variables]\nV=no\n"
        "[C]\nMeasure=Calc\nFormula=1\n"
        "[M]\nMeter=Box\nText=x\nDynamicVariables=1\n[L]\nMeter=Box\nDynamicVariables=1\nText=#Copy#\n");
    skin.skin->start();
    const std::string title = "#V# \"][!SetVariable Hit 1][!Log \" [C]";
    ASSERT_EQ(skin.skin->measure("T")->value().stringValue, title);
    skin.run("[!SetOption M Text \"[T]\"][!SetVariable Copy \"[&T]\"][!SetOption M LeftMouseUpAction \"[!Log [T]]\"]");
    skin.tick();
    EXPECT_EQ(skin.option("M", "Text"), title);
    EXPECT_EQ(skin.option("L", "Text"), title);
    EXPECT_EQ(skin.variable("Copy"), title);
    skin.skin->runEventAction(skin.option("M", "LeftMouseUpAction"), {});
    EXPECT_EQ(skin.variable("Hit"), "(none)");
    EXPECT_EQ(skin.host.requests.back(), "log : " + title);
}

TEST(FullSkinTests, laysOut) {
    RunningFullSkin skin("[Rainmeter]\nDynamicWindowSize=1\n"
                         "[A]\nMeter=Box\nX=10.9\nY=(3*4)\nW=20\nH=10\n"
                         "[B]\nMeter=Box\nX=5r\nY=2R\nW=7.8\nH=1\nPadding=1,2,3,4\n"
                         "[C]\nMeter=Box\nX=R\nY=r\nW=4\nH=4\nHidden=1\n"
                         "[D]\nMeter=Box\nX=1R\nY=0\nW=3\nH=3\n"
                         "[E]\nMeter=Box\nX=[A:XW]\nY=([D:YH] + [C:W])\nW=1\nH=1\nDynamicVariables=1\n"
                         // In a container, which stands behind its contents.
                         "[In]\nMeter=Box\nX=5R\nY=6\nW=500\nH=5\nContainer=Box\n"
                         "[In2]\nMeter=Box\nX=1R\nY=2r\nW=1\nH=1\nContainer=Box\n"
                         "[Box]\nMeter=Box\nX=2R\nY=0r\nW=30\nH=30\n");
    skin.skin->start();
    EXPECT_EQ(skin.frame("A"), "10 12 20 10");
    EXPECT_EQ(skin.frame("B"), "15 24 11 7");
    EXPECT_EQ(skin.frame("C"), "26 24 0 0");
    EXPECT_EQ(skin.frame("D"), "27 0 3 3");
    EXPECT_EQ(skin.frame("E"), "30 3 1 1");
    EXPECT_EQ(skin.frame("Box"), "33 3 30 30");
    EXPECT_EQ(skin.frame("In"), "38 9 500 5");
    EXPECT_EQ(skin.frame("In2"), "539 11 1 1");
    EXPECT_EQ(skin.skin->widgetSize(), (Size{63, 33}));
    EXPECT_THAT(skin.host.shown, ElementsAre("A", "B", "D", "E", "In", "In2"));

    // E follows at its own update, what stands relative to others at once.
    skin.run("[!ShowMeter C][!MoveMeter 100 50 A][!HideMeter Box]");
    EXPECT_EQ(skin.frame("D"), "121 0 3 3");
    EXPECT_EQ(skin.frame("E"), "30 3 1 1");
    EXPECT_EQ(skin.skin->widgetSize(), (Size{63, 33}));
    skin.tick();
    EXPECT_EQ(skin.frame("E"), "120 7 1 1");
    EXPECT_EQ(skin.skin->widgetSize(), (Size{124, 69}));
    EXPECT_THAT(skin.host.shown, ElementsAre("A", "B", "C", "D", "E"));
}

TEST(FullSkinTests, keepsTheWindowsSize) {
    const std::string grows = "[A]\nMeter=Box\nX=-5\nW=#CURRENTCONFIGWIDTH#\nH=8\n[B]\nMeter=Box\nW=20\nH=4\n";
    for (const auto& [options, before, after] : std::vector<std::tuple<std::string, Size, Size>>{
             {"", {20, 8}, {20, 8}},
             {"DynamicWindowSize=1", {20, 8}, {95, 8}},
             {"DynamicWindowSize=1\nSkinWidth=(30+3)\nSkinHeight=0", {33, 8}, {33, 8}},
         }) {
        RunningFullSkin skin("[Rainmeter]\n" + options + "\n" + grows);
        skin.skin->start();
        EXPECT_EQ(skin.skin->widgetSize(), before) << options;
        skin.run("[!SetOption A W 100]");
        skin.tick();
        EXPECT_EQ(skin.skin->widgetSize(), after) << options;
    }

    // A moved meter takes the window with it; a size that is written counts before the meter's own first update.
    RunningFullSkin skin(
        "[A]\nMeter=Box\nX=([B:XW]+1)\nW=2\nH=8\nDynamicVariables=1\n[B]\nMeter=Box\nX=3\nW=20\nH=4\n");
    skin.skin->start();
    EXPECT_EQ(skin.frame("A"), "24 0 2 8");
    EXPECT_EQ(skin.skin->widgetSize(), (Size{26, 8}));
    skin.run("[!MoveMeter 40 10 B][!Redraw]");
    EXPECT_EQ(skin.skin->widgetSize(), (Size{60, 14}));
}

TEST(FullSkinTests, knowsWhereItStands) {
    RunningFullSkin skin("[Variables]\nSCREENAREAWIDTH=7\n[M]\nMeter=Box\nW=30\nH=20\nDynamicVariables=1\n"
                         "Text=#CURRENTCONFIG# #ROOTCONFIG# #CURRENTCONFIGX# #CURRENTCONFIGWIDTH# #SCREENAREAWIDTH# "
                         "#WORKAREAHEIGHT@2# #CURRENTSECTION#\n");
    skin.skin->start();
    skin.tick();
    EXPECT_EQ(skin.option("M", "Text"), "Pack\\Test Pack 100 30 1920 1080 M");
    skin.host.where.x = -40;
    skin.host.where.screens.push_back({{-800, 0, 800, 600}, {-800, 0, 800, 570}});
    skin.skin->placeDidChange();
    skin.tick();
    EXPECT_EQ(skin.option("M", "Text"), "Pack\\Test Pack -40 30 1920 570 M");
}

TEST(FullSkinTests, saysMeasuresInEveryForm) {
    RunningFullSkin skin("[N]\nMeasure=Calc\nFormula=1234.56789012345\nMinValue=0\nMaxValue=(4000+1)\n"
                         "Substitute=\".56789\":\"!\"\n"
                         "[S]\nMeasure=String\nString=a b/(\xC3\xA4)\n[M]\nMeter=Box\nDynamicVariables=1\n");
    skin.skin->start();
    for (const auto& [form, text] : std::vector<std::pair<std::string, std::string>>{
             {"[N]", "1234!"},
             {"[&N:]", "1234.5678901235"},
             {"[N:1]", "1234.6"},
             {"[N:/1000]", "1.2345678901"},
             {"[N:%]", "31"},
             {"[N:2,%,/2]", "15.43"},
             {"[N:MaxValue]", "4001"},
             {"[S:EncodeURL]", "a%20b%2F%28%C3%A4%29"},
             {"[S:EscapeRegExp]", "a b/\\(\xC3\xA4\\)"},
             {"[N:/0] [M] [M:Z] [N:odd]", "[N:/0] [M] [M:Z] [N:odd]"},
             {"[M:X]", "0"},
         }) {
        // The stars fall when the bang runs, so that the meter reads the form itself.
        skin.run("[!SetVariable Form \"\"\"" + form + "\"\"\"]");
        EXPECT_EQ(skin.variable("Form"), text) << form;
    }
}

TEST(FullSkinTests, countsWhatHasNoValueYetAsNothing) {
    RunningFullSkin skin("[First]\nMeasure=String\nString=<[S]|[C]|[C:]|[C:%]>\nDynamicVariables=1\n"
                         "[S]\nMeasure=String\nString=abc\n[C]\nMeasure=Calc\nFormula=5\nMaxValue=10\n");
    skin.skin->start();
    EXPECT_EQ(skin.skin->measure("First")->value().stringValue, "<|0|0|0>");
    skin.tick();
    EXPECT_EQ(skin.skin->measure("First")->value().stringValue, "<abc|5|5|50>");
}

TEST(FullSkinTests, sendsBangsToOthers) {
    RunningFullSkin skin("[M]\nMeter=Box\n");
    skin.skin->start();
    skin.run("[!HideMeter M Pack/Other][!SetVariable V \"(1+2)\" *][!ShowMeter M pack/test][!Refresh]");
    EXPECT_THAT(
        skin.host.requests, ElementsAre("bang Pack\\Other HideMeter M", "bang  SetVariable V (1+2)", "refresh"));
    EXPECT_EQ(skin.variable("V"), "3");
    EXPECT_TRUE(skin.skin->isMeterVisible("M"));
}

TEST(FullSkinTests, waitsForADelay) {
    RunningFullSkin skin("[Rainmeter]\nOnCloseAction=[!SetVariable Closed 1]\n");
    skin.skin->start();
    skin.run("[!SetVariable A 1][!Delay 500][!SetVariable A 2][!Delay 500][!SetVariable A 3]");
    skin.run("[!SetVariable B 1]");
    skin.time.runFor(0.6);
    EXPECT_EQ(skin.variable("A"), "2");
    EXPECT_EQ(skin.variable("B"), "1");
    skin.skin->stop();
    skin.time.runFor(1);
    EXPECT_EQ(skin.variable("A"), "2");
    EXPECT_EQ(skin.variable("Closed"), "1");
}

TEST(FullSkinTests, endsWhatRunsItself) {
    RunningFullSkin skin("[Variables]\nG=x\nR=[#R]\n"
                         "[M]\nMeasure=Calc\nFormula=M+1\nOnUpdateAction=[!Update]\n"
                         "[Self]\nMeasure=Calc\nFormula=Self+1\nDisabled=1\nOnUpdateAction=[!UpdateMeasure Self]\n");
    skin.skin->start();
    EXPECT_EQ(skin.number("M"), 16);
    skin.tick();
    EXPECT_EQ(skin.number("M"), 32);
    skin.run("[!DisableMeasure M][!EnableMeasure Self][!UpdateMeasure Self]");
    EXPECT_EQ(skin.number("Self"), 16);
    std::string growing;
    for (int i = 0; i < 40; ++i)
        growing += "[!SetVariable G \"[#G][#G]\"]";
    skin.run(growing);
    EXPECT_LE(skin.variable("G").size(), 1U << 20);
    for (int i = 0; i < 100000; ++i)
        skin.run("[!Delay 0][!SetVariable D ([#D]+1)]");
    skin.time.runFor(0.1);
    std::vector<std::string> errors;
    for (const auto& request : skin.host.requests)
        errors.push_back(request);
    EXPECT_THAT(errors, testing::Contains(HasSubstr("!Update runs itself")).Times(1));
    EXPECT_THAT(errors, testing::Contains(HasSubstr("!UpdateMeasure runs itself")).Times(1));
    EXPECT_THAT(errors, testing::Contains(HasSubstr("wait for their delays")).Times(1));
}

} // namespace
} // namespace Ostrel
