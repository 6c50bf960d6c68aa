#include "OstrelEngine/Actions/ActionGrammar.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel::ActionGrammar {

namespace {

/// "NAME(arguments)" for a bang, "<token>" for the rest.
std::string printed(const std::vector<ParsedActionCommand>& commands) {
    std::string text;
    for (const auto& command : commands) {
        const bool isBang = command.kind == ParsedActionCommand::Kind::bang;
        text += isBang ? command.name + "(" + command.text + ")" : "<" + command.text + ">";
    }
    return text;
}

} // namespace

TEST(ActionGrammar, splitsActionsIntoCommands) {
    const struct {
        std::string_view action;
        std::string_view commands;
    } rows[] = {
        {"", ""},
        {" \n[]\n[ ]\n[!]\n! x", ""},
        {"!Refresh", "REFRESH()"},
        {"[!SetVariable X 1][!UpdateMeter *][!Redraw]", "SETVARIABLE(X 1)UPDATEMETER(*)REDRAW()"},
        {"[!a  b ] [!c ]http://x y", "A(b)<[!c ]http://x y>"},
        {"[!Show Meter]", "SHOW(Meter)"},
        {"[http://x][\"a b.txt\" c]", "<http://x><\"a b.txt\" c>"},
        {"http://x rest of it", "<http://x rest of it>"},
        {"[!A][", "A()<[>"},
        {"[[!A]]", "<[>A]()"},
        {"[!SetVariable X \"a]b\"][!B]", "SETVARIABLE(X \"a]b\")B()"},
        {"[!A \"one\ntwo\"]", "<[!A \"one><two\"]>"},
        {"!\xC5\xBF\xC3\xA4 x", "S\xC3\x84(x)"},
        {"!A\xC2\xA0"
         "b",
            "A(b)"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(printed(parseCommands(row.action)), row.commands) << row.action;
}

TEST(ActionGrammar, unwrapsExecute) {
    const struct {
        std::string_view action;
        std::string_view commands;
    } rows[] = {
        {"!Execute", ""},
        {"!execute !Redraw", "REDRAW()"},
        {"!ExecuteBang !Redraw", "<Bang !Redraw>"},
        {"!Execute [!A][!B]", "A()B()"},
        {"!Execute [http://x]", "<http://x>"},
        {"[!Execute [!HideMeter A][!ShowMeter B]]", "HIDEMETER(A)SHOWMETER(B)"},
        {"[!Execute [!HideMeter A] [!ShowMeter B] ][!C]", "HIDEMETER(A)SHOWMETER(B)C()"},
        {"[!Execute [!Execute [!A][!B]]][!C]", "A()B()C()"},
        {"[!Execute [!SetVariable A [M]][!B]]", "SETVARIABLE(A [M])B()"},
        {"[!Execute [!A]\n][!B x]]", "A()B(x])"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(printed(parseCommands(row.action)), row.commands) << row.action;
}

TEST(ActionGrammar, staysQuickOnHostileText) {
    std::string bangs;
    std::string wrappers;
    for (int i = 0; i < 20000; ++i) {
        bangs += "[!HideMeter \"\xC3\xA4\"]";
        wrappers += i % 2 == 0 ? "!Execute " : "[!Execute [";
    }
    EXPECT_EQ(parseCommands(bangs).size(), 20000U);
    EXPECT_LE(parseCommands(wrappers + "\xC3\xA4" + std::string(20000, ']')).size(), 20001U);
    EXPECT_EQ(parseCommands("!Execute" + std::string(100000, '[') + "x").size(), 1U);
}

TEST(ActionGrammar, readsWordsAndQuotedTexts) {
    using testing::ElementsAre;
    EXPECT_THAT(tokenizeArguments(" a\t\"b c\" 'd \"e' "), ElementsAre("a", "b c", "d \"e"));
    EXPECT_THAT(tokenizeArguments("abc\"def\"ghi''"), ElementsAre("abc", "def", "ghi", ""));
    EXPECT_THAT(tokenizeArguments("\"a\\\" b\""), ElementsAre("a\\", "b", "")) << "a backslash escapes nothing";
    EXPECT_THAT(tokenizeArguments("x \"open end"), ElementsAre("x", "open end"));
    EXPECT_THAT(tokenizeArguments("x\""), ElementsAre("x", ""));
    EXPECT_THAT(tokenizeArguments("a\xE3\x80\x80"
                                  "b\xC2"),
        ElementsAre("a", "b\xC2"));
    EXPECT_THAT(tokenizeArguments(" \t"), ElementsAre());
    EXPECT_EQ(firstArgument("'' x"), "");
    EXPECT_EQ(firstArgument(""), std::nullopt);
}

TEST(ActionGrammar, readsTwoArguments) {
    const struct {
        std::string_view text;
        TwoArguments arguments;
    } rows[] = {
        {" ", {std::nullopt, std::nullopt}},
        {" one ", {"one", std::nullopt}},
        {"one  two 'three' ", {"one", "two 'three'"}},
        {"'one two'three", {"one two", "three"}},
        {"\"\" x", {"", "x"}},
        {"\"open end", {"\"open", "end"}},
        {"a\"b c\"", {"a\"b", "c\""}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parseTwoArguments(row.text), row.arguments) << row.text;
}

TEST(ActionGrammar, stripsOnePairOfQuotes) {
    const struct {
        std::string_view text;
        std::string_view stripped;
    } rows[] = {{" \" a \" ", " a "}, {"''a''", "'a'"}, {"\"a'", "\"a'"}, {"\"", "\""}, {"\"\"", ""}, {" a ", "a"}};
    for (const auto& row : rows)
        EXPECT_EQ(stripQuotes(row.text), row.stripped) << row.text;
}

} // namespace Ostrel::ActionGrammar
