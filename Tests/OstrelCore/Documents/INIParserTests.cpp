#include "OstrelCore/Documents/INIParser.h"
#include "OstrelCore/Documents/VariableStore.h"

#include <gtest/gtest.h>

namespace Ostrel {

namespace {

std::string number(int value) {
    return std::to_string(value);
}

/// "[A]1 x=1@2 ;c " for each section: name and line, then its entries, a key's line behind the sign.
std::string text(const INIDocument& document) {
    std::string result;
    for (const auto& section : document.sections) {
        result += "[" + section.name + "]" + number(section.location.line) + " ";
        for (const auto& entry : section.entries) {
            if (const auto* line = std::get_if<INIKeyValue>(&entry))
                result += line->key + "=" + line->value + "@" + number(line->location.line) + " ";
            else
                result += std::get<INIComment>(entry).text + " ";
        }
    }
    return result;
}

/// The effective lines of a section.
std::string effective(const INIDocument& document, std::string_view name) {
    std::string result;
    if (const auto* section = document.section(name))
        section->forEachLine([&](const INIKeyValue& line) { result += line.key + "=" + line.value + " "; });
    return result;
}

class INIParserTest : public ::testing::Test {
protected:
    INIDocument parse(std::string_view content) { return INIParser(files, diagnostics).parse(content); }
    std::string parsed(std::string_view content) { return text(parse(content)); }
    /// With includes, from "/s/skin.ini".
    INIDocument include(std::string content) {
        files.addFile("/s/skin.ini", std::move(content));
        return INIParser(files, diagnostics).parseWithIncludes("/s/skin.ini", &store).value_or(INIDocument());
    }
    std::string messages() const {
        std::string result;
        for (const auto& diagnostic : diagnostics.diagnostics())
            result += diagnostic.description() + "\n";
        return result;
    }

    InMemoryFileProvider files;
    DiagnosticCollector diagnostics;
    VariableStore store;
};

} // namespace

TEST_F(INIParserTest, readsLinesAsTheyAreMeant) {
    const struct {
        std::string_view content;
        std::string_view document;
    } rows[] = {
        {"", ""},
        {"Key=Value\n; comment\n[A]", "[A]3 "},
        {"[A]\nUpdate = 1000", "[A]1 Update=1000@2 "},
        {"[A]\n \xC2\xA0\tx\xE3\x80\x80=\t1 ", "[A]1 x=1@2 "},
        {"[A]\n  ;c ;d  \nx=1;2\n#c\n//\n#c=1", "[A]1 ;c ;d x=1;2@3 #c=1@6 "},
        {"[A]x\nx=1\n[B\ny=2\n[]\nz=3\n[ A ]", "[A]1 x=1@2 y=2@4 z=3@6 [ A ]7 "},
        {"[A]\n=v\n==\na=b=c", "[A]1 =v@2 ==@3 a=b=c@4 "},
        {"[A]\nx=1\n[a]\nx=2\ny=3", "[A]1 x=1@2 x=2@4 y=3@5 "},
        {"[Straße]\n[STRASSE]\nx=1", "[Straße]1 x=1@3 "},
        {"[A]\n@Include=x.inc", "[A]1 @Include=x.inc@2 "},
        {"[A]]x\n[[B]\nx=1", "[A]1 [[B]2 x=1@3 "},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parsed(row.content), row.document) << row.content;
    EXPECT_EQ(messages(), "");
}

TEST_F(INIParserTest, countsEveryNewlineCharacterAsALine) {
    for (const auto* newline : {"\n", "\v", "\f", "\r", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"}) {
        const auto content = replacingOccurrences("[A]|x=aaaaaaaaaaaaaaaaé|| |y=2|", "|", newline);
        EXPECT_EQ(parsed(content), "[A]1 x=aaaaaaaaaaaaaaaaé@2 y=2@5 ");
        EXPECT_EQ(parsed("[A]\r" + std::string(newline) + "x=1"), "[A]1 x=1@3 ");
    }
    EXPECT_EQ(parsed("[A]\nx=\xE2\x80\xA7\xC2\x86 1"), "[A]1 x=\xE2\x80\xA7\xC2\x86 1@2 ") << "neighbours of newlines";
}

TEST_F(INIParserTest, stripsOnePairOfQuotesThatHoldsNoOther) {
    const struct {
        std::string_view value;
        std::string_view stripped;
    } rows[] = {{"\"a=b\"", "a=b"}, {"'a'", "a"}, {"\"\"", ""}, {"\"", "\""}, {"\"a\" \"b\"", "\"a\" \"b\""},
        {"\"a 'b' c\"", "a 'b' c"}, {"'\"x\"'", "\"x\""}, {"\"a'", "\"a'"},
        {"\"He said \"hi\"\"", "\"He said \"hi\"\""}, {"\" a \"", " a "}, {"\"a\"b", "\"a\"b"}};
    for (const auto& row : rows)
        EXPECT_EQ(*parse("[A]\nx=" + std::string(row.value)).section("A")->value("x"), row.stripped);
}

TEST_F(INIParserTest, findsEffectiveLinesWithoutCaseInSmallAndLargeSections) {
    std::string content = "[A]\n;c\n";
    for (int i = 0; i < 100; ++i)
        content += "Key" + number(i) + "=" + number(i) + "\nKEY" + number(i) + "=again\n";
    for (const int count : {5, 100}) {
        const auto document = parse(content.substr(0, content.find("Key" + number(count) + "=")));
        const auto* section = document.section("a");
        ASSERT_TRUE(section);
        EXPECT_EQ(section->keyValues.lines.size(), static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i)
            EXPECT_EQ(*section->value("kEy" + number(i)), number(i));
        EXPECT_EQ(section->value("Key" + number(count)), nullptr);
    }
}

TEST_F(INIParserTest, mergesIncludesInReadingOrder) {
    files.addFile("/s/sub/a.inc", "x=lost\n[Main]\n;lost\nx=2\ny=2\ny=3\n[New]\n;kept\nn=1\nn=2\n@Include=deep.inc\n");
    files.addFile("/s/sub/deep.inc", "[main]\nz=3\n[new]\nm=4\n");
    const auto document = include("[MAIN]\nx=1\n@includeThis=sub\\a.inc\ny=4\n;own\n[Late]\n");
    EXPECT_EQ(text(document), "[MAIN]1 x=1@2 y=2@5 z=3@2 y=4@4 ;own [New]7 ;kept n=1@9 n=2@10 m=4@4 [Late]6 ");
    EXPECT_EQ(effective(document, "main"), "x=1 y=2 z=3 ");
    EXPECT_EQ(effective(document, "NEW"), "n=1 m=4 ");
    EXPECT_EQ(document.section("New")->line("M")->location.description(), "/s/sub/deep.inc:4");
    EXPECT_EQ(messages(), "");
}

TEST_F(INIParserTest, collectsVariablesAsTheyAreReadAndNamesIncludesByThem) {
    files.addFile("/s/b.inc", "[variables]\nA=2\nB=3\nNext=c\n");
    files.addFile("/abs/c.inc", "[Variables]\nC=5\n");
    const auto document
        = include("[Variables]\nA=1\n@Include=b.inc\nB=4\nDir=/abs\n[X]\n@Include2=\"#Dir#/[#Next].inc\"\n");
    EXPECT_EQ(effective(document, "variables"), "A=1 B=3 Next=c Dir=/abs C=5 ");
    for (const auto& [name, value] : {std::pair("A", "1"), {"B", "3"}, {"C", "5"}, {"Dir", "/abs"}})
        EXPECT_EQ(*store.value(name), value) << name;
    EXPECT_EQ(messages(), "");
}

TEST_F(INIParserTest, goesOnAfterIncludesThatCannotBeRead) {
    const auto document = include("[A]\n@Include=none.inc\n@Include2=#Unknown#/x\n@include3=/y\nx=1\n");
    EXPECT_EQ(text(document), "[A]1 x=1@5 ");
    EXPECT_EQ(messages(),
        "error: Cannot read file: /s/none.inc\nerror: Cannot read file: /s/#Unknown#/x\n"
        "error: Cannot read file: /y\n");
}

TEST_F(INIParserTest, readsAFileThatIncludesItselfAHundredTimes) {
    const auto document = include("[A]\nx=1\n@Include=skin.ini\ny=2\n;c\n");
    EXPECT_EQ(text(document), "[A]1 x=1@2 y=2@4 y=2@4 ;c ");
    EXPECT_EQ(messages(), "error: @Include depth limit (100) exceeded at: /s/skin.ini\n");
}

TEST_F(INIParserTest, endsForFilesThatIncludeThemselvesOverAndOver) {
    std::string heads;
    for (int i = 0; i < 20000; ++i)
        heads += "[A]\n@Include=skin.ini\n";
    for (const auto& content : {std::string("[A]\n@Include=skin.ini\n@Include=skin.ini\n"), heads,
             "[A]\n@Include=skin.ini\n" + std::string(4000000, 'x')}) {
        EXPECT_EQ(text(include(content)), "[A]1 ");
        EXPECT_EQ(diagnostics.errors().back().message, "Too many included files or lines at: /s/skin.ini");
    }
}

} // namespace Ostrel
