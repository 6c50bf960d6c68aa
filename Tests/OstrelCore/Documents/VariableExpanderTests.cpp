#include "OstrelCore/Documents/VariableExpander.h"

#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace Ostrel {

namespace {

std::string expanded(const VariableStore& store, std::string_view text, std::size_t warnings = 0) {
    DiagnosticCollector diagnostics;
    auto result = VariableExpander(store, diagnostics).expand(text);
    EXPECT_EQ(diagnostics.warnings().size(), warnings) << text;
    return result;
}

} // namespace

TEST(VariableExpander, expandsBothFormsToAFixedPoint) {
    VariableStore store;
    for (const auto& [name, value] : {std::pair("A", "B"), {"B", "1"}, {"x y", "2"}, {"Self", "#Self#"}, {"Hash", "#"},
             {"Deep", "[#A]#A#"}, {"Open", "[#"}, {"Straße", "3"}, {"[#A", "4"}, {"Esc", "#*A*#"}, {"Empty", ""},
             {"Tail", "#B]"}, {"Tail2", "#Tail]"}})
        store.setUserVariable(name, value);
    const struct {
        std::string_view text;
        std::string_view result;
    } rows[] = {
        {"#A#", "B"},
        {"[#a]", "B"},
        {"#X Y#", "2"},
        {"#STRASSE#", "3"},
        {"#Deep#", "BB"},
        {"#Unknown#", "#Unknown#"},
        {"[#Unknown]", "[#Unknown]"},
        {"# A#", "# A#"},
        {"[# A]", "[# A]"},
        {"#", "#"},
        {"##", "##"},
        {"[#]", "[#]"},
        {"[#", "[#"},
        {"a#", "a#"},
        {"###A##", "#1"},
        {"#a#b#",
            "B"
            "b#"},
        {"#u#b#", "#u1"},
        {"[#[#A]]", "4]"},
        {"#Self#", "#Self#"},
        {"x#Empty#y", "xy"},
        {"#*Var*#", "#Var#"},
        {"#*A*#", "#A#"},
        {"#*A", "#*A"},
        {"#*A#B#", "#*A1"},
        {"#**#", "##"},
        {"#*#", "#*#"},
        {"[*Measure*]", "[Measure]"},
        {"[*A", "[*A"},
        {"#Esc#", "#A#"},
        {"[*#A#*]", "[B]"},
        {"#*[*x*]*#", "#[x]#"},
        {"#Open#A]", "B"},
        {"#Hash#A#", "B"},
        {"[[#B]#B#", "[11"},
        {"[[#Tail]", "1"},
        {"[[[#Tail2]", "1"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(expanded(store, row.text), row.result) << row.text;
}

TEST(VariableExpander, looksIntoTheBracketWhenItsOuterNameIsUnknown) {
    VariableStore store;
    store.setUserVariable("A", "B");
    store.setUserVariable("B", "1");
    EXPECT_EQ(expanded(store, "[#[#A]]"), "1");
}

TEST(VariableExpander, stopsAfterAThousandPassesWithAWarning) {
    VariableStore store;
    store.setUserVariable("A", "x#A#");
    store.setUserVariable("Back", "#Back#[y]");
    std::string prefixes(1000, 'x');
    EXPECT_EQ(expanded(store, "#A#", 1), prefixes + "#A#");
    EXPECT_EQ(expanded(store, "#Back#", 1).size(), 3006U);
    // A chain of a thousand passes less one settles in the last of them.
    for (int i = 0; i < 999; ++i)
        store.setUserVariable("C" + std::to_string(i), "#C" + std::to_string(i + 1) + "#");
    store.setUserVariable("C999", "end");
    EXPECT_EQ(expanded(store, "#C1#"), "end");
    EXPECT_EQ(expanded(store, "#C0#", 1), "end");
}

TEST(VariableExpander, expandsManyTextsThatGrowToTheLimit) {
    VariableStore store;
    store.setUserVariable("A", "x#A#[#Unknown]");
    DiagnosticCollector diagnostics;
    VariableExpander expander(store, diagnostics);
    const auto first = expander.expand("#A#");
    EXPECT_EQ(first.size(), 1000U + 3U + 10U * 1000U);
    for (int i = 0; i < 7; ++i)
        EXPECT_TRUE(expander.expand("#A#") == first);
}

TEST(VariableExpander, keepsTextsAndItsWorkBounded) {
    VariableStore store;
    store.setUserVariable("Twice", "#Twice##Twice#");
    store.setUserVariable("Long", std::string(VariableExpander::MaxTextSize, 'x'));
    store.setUserVariable("Openers", replacingOccurrences(std::string(300000, '#'), "#", "[#"));
    DiagnosticCollector diagnostics;
    VariableExpander expander(store, diagnostics);
    EXPECT_LT(expander.expand("#Twice#").size(), 4 * VariableExpander::MaxTextSize);
    EXPECT_EQ(diagnostics.warnings().size(), 1U);
    EXPECT_EQ(diagnostics.warnings()[0].message, "Variable expansion reached maximum replacement limit (1000)");
    std::size_t total = 0;
    for (int i = 0; i < 200; ++i)
        total += expander.expand("#Long#").size();
    EXPECT_LE(total, VariableExpander::MaxTotalWork / VariableExpander::KeepingWork + VariableExpander::MaxTextSize);
    EXPECT_EQ(expander.expand("#Long# #*a*#"), "#Long# #a#") << "only protection is taken off after that";
    EXPECT_EQ(diagnostics.warnings().size(), 2U);
    EXPECT_EQ(expanded(store, "#Openers#]", 1).size(), 600001U) << "each opener before one far closer";
}

// 113 bytes took five seconds: names beyond ASCII grow without end, and each opener before the far closer folds one.
// How far the texts got tells how much was done.
TEST(VariableExpander, countsTheFoldingOfNamesThatGrow) {
    std::string letters;
    for (int i = 0; i < 21; ++i)
        letters += "\xC3\xBF";
    VariableStore store;
    for (const auto& [name, value] : {std::pair<std::string, std::string>("A", "x#B#"),
             {"B", "[" + letters.substr(0, 12) + "[#[#A]]##" + letters.substr(12) + "#C]"}, {"C", "#D##E#"},
             {"D", "[#F"}, {"F", "]"}, {"a", "#A#"}, {"b", "[#B]"}, {"c", "[![#A]]##"}, {"@", "[*#@#*]#@#"}})
        store.setUserVariableIfAbsent(name, value);
    DiagnosticCollector diagnostics;
    VariableExpander expander(store, diagnostics);
    EXPECT_LT(expander.expand("#A#").size(), 9000U);
    EXPECT_EQ(diagnostics.warnings().size(), 1U);
    const std::string openers = replacingOccurrences(std::string(300000, '#'), "#", "[#") + "]";
    EXPECT_EQ(expander.expand(openers), openers) << "nothing is looked up any more";
}

TEST(VariableStore, tellsASkinItsPlace) {
    const TemporaryFolder folder;
    folder.write("Suite/@resources/x", "");
    folder.write("Suite/Sub/x.ini", "");
    VariableStore store;
    store.setUserVariable("CurrentFile", "shadowed");
    store.setUserVariable("own", "1");
    store.configureBuiltIns(folder.path() + "/Suite/Sub/x.ini", "/skins", "/settings/");
    const std::pair<std::string_view, std::string> rows[] = {{"CURRENTPATH", folder.path() + "/Suite/Sub/"},
        {"currentfile", "x.ini"}, {"SKINSPATH", "/skins"}, {"SETTINGSPATH", "/settings/"}, {"CRLF", "\n"},
        {"@", folder.path() + "/Suite/@Resources/"}, {"CURRENTCONFIG", "Sub"}, {"ROOTCONFIG", "Suite"}};
    for (const auto& [name, value] : rows)
        EXPECT_EQ(*store.value(name), value) << name;
    EXPECT_EQ(store.allVariableNames().size(), 9U);

    VariableStore lonely;
    lonely.configureBuiltIns("/no such folder/x.ini");
    EXPECT_EQ(*lonely.value("@"), "/no such folder/@Resources/");
    EXPECT_EQ(*lonely.value("RootConfig"), "no such folder");
    lonely.configureBuiltIns("/x.ini");
    EXPECT_EQ(*lonely.value("@"), "/@Resources/");
    EXPECT_EQ(*lonely.value("CURRENTPATH"), "/");
}

} // namespace Ostrel
