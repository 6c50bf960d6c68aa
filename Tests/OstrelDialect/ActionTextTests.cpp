#include "OstrelDialect/ActionText.h"

#include "OstrelDialect/LiteralMarks.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace Ostrel {

namespace {

/// Steps by a letter for their kind, the name and the arguments between bars; a literal argument begins with "=".
std::string shown(std::string_view action) {
    std::string text;
    for (const auto& step : parseActionText(action)) {
        text += text.empty() ? "" : " / ";
        text += "BSOVN"[static_cast<int>(step.kind)];
        text += " " + step.name;
        for (const auto& argument : step.arguments)
            text += (argument.isLiteral ? "|=" : "|") + argument.text;
    }
    return text;
}

TEST(ActionText, splitsStepsAndArguments) {
    struct Row {
        std::string_view action;
        std::string_view expected;
    };
    for (const auto& [action, expected] : {
             Row{"!Refresh", "B Refresh"},
             {" [!RainmeterHideMeter M] [!redraw]", "B HideMeter|M / B redraw"},
             {"!Rainmeter", "B Rainmeter"},
             {"[!SetVariable X \"a b\" it's]", "B SetVariable|X|a b|it's"},
             {"!SetVariable X [M] (1+2)", "B SetVariable|X|[M]|(1+2)"},
             {"[!Log [&S:f('a b', \"c d\")] x]", "B Log|[&S:f('a b', \"c d\")]|x"},
             {"[!SetOption M Act \"[!A][!B]\"][!C]", "B SetOption|M|Act|[!A][!B] / B C"},
             {"[!SetOption M Act \"\"\"[!Log \"x]\"]\"\"\"][!C]", "B SetOption|M|Act|=[!Log \"x]\"] / B C"},
             {"[!Log \"\"\"say \"hi\"\"\"\"]", "B Log|=say \"hi\""},
             {"[!SetOption M Text \"\"]", "B SetOption|M|Text|"},
             {"[!Log 5\"][!Redraw]", "B Log|5\" / B Redraw"},
             {"[!Redraw", "B Redraw"},
             {"[!Log a]b][!C]", "B Log|a / B C"},
             {"!Execute [!A x][!B]", "B A|x / B B"},
             {"[!Execute [!A][!Execute [!B]]]", "B A / B B"},
             {"!Execute \"a b.exe\" c", "O a b.exe|c"},
             {"[\"C:\\a b.exe\" -x \"c d\"]", "O C:\\a b.exe|-x|c d"},
             {"http://x.org/?a=[b]", "O http://x.org/?a=[b]"},
             {"[Play \"a b.wav\"][playStop]", "S Play|a b.wav / S playStop"},
             {"[][!A]", "N  / B A"},
             {"[#U][&M][$UserInput][M]", "V U / O [&M] / O [$UserInput] / O M"},
             {"[#A[#B]]", "V A[#B]"},
             {"[!A] and [!B]", "B A / B B"},
             {"", ""},
         })
        EXPECT_EQ(shown(action), expected) << action;
}

TEST(ActionText, takesMarkedDataAsOneArgument) {
    const auto data = LiteralMarks::marked("a\"] [!Quit] \"b");
    EXPECT_EQ(shown("[!Log " + data + "][!A]"), "B Log|" + data + " / B A");
    EXPECT_EQ(shown("[!Log \"" + data + " x\"]"), "B Log|" + data + " x");
}

TEST(ActionText, boundsStepsWrappersAndTime) {
    std::string many;
    std::string wrapped = "!A";
    std::string open = "[!A ";
    for (int i = 0; i < 20000; ++i) {
        many += "[!A]";
        wrapped = i < 5000 ? "!Execute " + wrapped : wrapped;
        open += "[\" ";
    }
    EXPECT_EQ(parseActionText(many).size(), 10000U);
    EXPECT_TRUE(parseActionText(wrapped).empty());
    EXPECT_LE(parseActionText(open).size(), 20000U);
    EXPECT_TRUE(parseActionText(std::string(2 << 20, 'a')).empty());
}

} // namespace

} // namespace Ostrel
