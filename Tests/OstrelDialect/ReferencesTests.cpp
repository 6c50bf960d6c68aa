#include "OstrelDialect/References.h"

#include "OstrelDialect/FakeScope.h"
#include "OstrelDialect/LiteralMarks.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace Ostrel {

namespace {

struct Row {
    std::string_view text;
    std::string_view expected;
};

class References : public testing::Test {
protected:
    References() {
        for (const auto& [name, value] : {Row{"A", "1"}, {"B", "#A#2"}, {"Name", "A"}, {"Color1", "red"}, {"N", "1"},
                 {"Half", "#Co"}, {"Other", "lor1#"}, {"Live", "[#A]"}, {"Text", "[M]"}, {"Args", "1, 2"},
                 {"Ring1", "#Ring2#"}, {"Ring2", "#Ring3#"}, {"Ring3", "#Ring1#"}, {"Mixed", "[#Mixed2]"},
                 {"Mixed2", "a#Mixed#"}, {"Self", "x#Self#"}, {"Use", "see #Self#"}, {"Who", "#CURRENTSECTION#"},
                 {"Code", "9762"}, {"Kept", "#*A*#"}, {"Grow", "#Gr"}})
            scope.variables.set(name, std::string(value));
        for (const auto& [name, value] : {Row{"M", "#A#[M2]"}, {"M:", "3.5"}, {"M:/1024,%,2", "7"}, {"M2", "two"},
                 {"CPU%", "90"}, {"Meter1:X", "20"}, {"Quote", "it's \"a\", [!Quit]"}, {"One", "1"}})
            scope.sections.set(name, std::string(value));
        scope.events.set("MouseX:%", "50");
        scope.events.set("UserInput", "#A#");
    }

    std::string resolved(std::string_view text, ReferenceKinds kinds = ReferenceKinds::All) const {
        return ReferenceText::parse(text).resolve(scope, "Here", kinds);
    }
    void expect(std::initializer_list<Row> rows, ReferenceKinds kinds = ReferenceKinds::All) const {
        for (const auto& [text, expected] : rows)
            EXPECT_EQ(resolved(text, kinds), expected) << text;
    }

    FakeScope scope;
};

TEST_F(References, replacesSignsAgainAndAgain) {
    expect({{"#A##b#", "112"}, {"#Color#N##", "red"}, {"#Half##Other#", "red"}, {"#x#A#", "#x1"}, {"##A##", "#1#"},
        {"50% of #A#%", "50% of 1%"}, {"%HOME%/%PATH%", "/home/#A#/%PATH%"}, {"#Who#", "Here"},
        {"#FF0000 #A#", "#FF0000 1"}, {"#", "#"}, {"$MouseX:%$ $No$ $5", "50 $No$ $5"}, {"$UserInput$", "#A#"}});
}

TEST_F(References, resolvesBracketsFromTheInside) {
    expect({{"[#A]", "1"}, {"[#[#Name]]", "1"}, {"[#Color[#A]]", "red"}, {"[#Color[&One]]", "red"},
        {"[&M[#A]]", "[&M1]"}, {"[#Live]", "1"}, {"[#Text]", "#A#[M2]"}, {"[M]", "#A#[M2]"}, {"[&m:]", "3.5"},
        {"[M:/1024,%,2]", "7"}, {"[CPU%]", "90"}, {"[Meter1:X]", "20"}, {"[Meter#A#:X]", "20"}, {"[Meter[#A]:X]", "20"},
        {"[$UserInput]", "#A#"}, {"[Unknown:X][]", "[Unknown:X][]"}, {"[#A", "[#A"}, {"][#A]]", "]1]"},
        {"#[A][B]#", "#[A][B]#"}, {"[#Color[One]]", "[#Color1]"}, {"[!Bang [M2]]", "[!Bang two]"}});
}

TEST_F(References, writesCharacters) {
    expect({{"[\\9762][\\x2622]", "☢☢"}, {"[\\[#Code]]", "☢"}, {"[\\65]", "A"}, {"[\\35]A#", "#A#"},
        {"[\\91]M2]", "[M2]"}, {"[\\0][\\xD800][\\x][\\99999]", "[\\0][\\xD800][\\x][\\99999]"}});
}

TEST_F(References, dropsTheStarsOfEscapesOnce) {
    expect({{"#*A*#", "#A#"}, {"#Kept#", "#A#"}, {"[*M*][#*A*][&*M:*]", "[M][#A][&M:]"}, {"#*A*##A#", "#A#1"},
        {"2*3*[M2]*4", "2*3*two*4"}, {"#**#", "#**#"}});
    expect({{"#*A*#[*M*]", "#*A*#[*M*]"}}, ReferenceKinds::ActionAtLoad);
}

TEST_F(References, leavesTheKindsThatWait) {
    expect({{"[#A][M2]#A#", "[#A][M2]1"}}, ReferenceKinds::ActionAtLoad);
    expect({{"[#A][M2][&M2]#A#", "1[M2][&M2]1"}}, ReferenceKinds::AtLoad);
}

TEST_F(References, splitsACallBeforeValuesArePutIn) {
    expect({{"[&S:f(a, 'b,c', (1+max(2,3)))]", "S.f|a|'b,c'|(1+max(2,3))"},
        {"[&S:f('[&Quote]', [#A])]", "S.f|'it's \"a\", [!Quit]'|1"}, {"[&S:f([#Args])]", "S.f|1, 2"},
        {"[&S:f(#Args#)]", "S.f|1|2"}, {"[&S:f()]", "S.f"}, {"[&S:f('a]b')]", "S.f|'a]b'"}, {"[&S:f([One])]", "S.f|1"},
        {"[&S:f('[#Live]')][#A]", "S.f|'1'1"}});
}

TEST_F(References, leavesRingsAndGrowthAsWritten) {
    expect({{"#Ring1#", "#Ring1#"}, {"[#Ring3]", "[#Ring3]"}, {"[#Mixed]", "[#Mixed]"}, {"a #Self# b", "a #Self# b"},
        {"#Use#", "see #Self#"}});
    std::string deep;
    for (int i = 0; i < 10000; ++i)
        deep += "[#";
    EXPECT_EQ(resolved(deep + "A" + std::string(10000, ']')).size(), 29998U);
    // Doubling twenty times a thousand letters would take a gigabyte.
    scope.variables.set("D0", std::string(1000, 'x'));
    for (int i = 1; i <= 30; ++i) {
        const auto half = "#D" + std::to_string(i - 1) + "#";
        scope.variables.set("D" + std::to_string(i), half + half);
    }
    EXPECT_LE(resolved("#D30#").size(), std::size_t{1} << 20);
    scope.variables.set("C0", "end");
    for (int i = 1; i < 900; ++i)
        scope.variables.set("C" + std::to_string(i), "#C" + std::to_string(i - 1) + "#");
    EXPECT_EQ(resolved("#C899#"), "end");
}

TEST_F(References, keepsDataLiteralInStoredText) {
    const auto stored = resolved("[&M] [#A] [&One] [*M2*]", ReferenceKinds::Stored);
    EXPECT_EQ(resolved(stored), "#A#[M2] 1 1 two");
    scope.variables.set("Stored", stored);
    EXPECT_EQ(resolved("#Stored#"), "#A#[M2] 1 1 two");
    // An action waits until it runs, and so do the marks.
    EXPECT_EQ(resolved(resolved("#Stored#", ReferenceKinds::ActionAtLoad)), "#A#[M2] 1 1 two");
    EXPECT_EQ(LiteralMarks::dropped(stored), "#A#[M2] 1 1 [M2]");
    // Data cannot end its own region.
    scope.sections.set("M", std::string(LiteralMarks::Close) + "#A#");
    EXPECT_EQ(resolved(resolved("[&M]", ReferenceKinds::Stored)), "#A#");
}

TEST_F(References, liveTextResolvesOnlyAfterAChangeOfWhatItNames) {
    scope.changes = scope.variableChanges = 1;
    LiveText text("#A# [One]", ReferenceKinds::All);
    EXPECT_TRUE(text.update(scope, "Here"));
    EXPECT_EQ(text.text(), "1 1");
    const int lookUps = scope.lookUps;
    EXPECT_FALSE(text.update(scope, "Here"));
    scope.changes = 2;
    scope.sectionChanges.set("M2", 9);
    EXPECT_FALSE(text.update(scope, "Here"));
    EXPECT_EQ(scope.lookUps, lookUps);

    scope.sections.set("One", "eins");
    scope.sectionChanges.set("One", 2);
    scope.changes = 3;
    EXPECT_TRUE(text.update(scope, "Here"));
    EXPECT_EQ(text.text(), "1 eins");
    scope.variables.set("A", "2");
    scope.variableChanges = 2;
    scope.changes = 4;
    EXPECT_TRUE(text.update(scope, "Here"));
    EXPECT_EQ(text.text(), "2 eins");
}

} // namespace

} // namespace Ostrel
