#include "OstrelEngine/Measures/Full/FullScriptMeasure.h"

#include "Support/ScriptedSkin.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace Ostrel {

namespace {

std::string contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

TEST(FullScriptMeasure, UpdateGivesNumberTextOrBoth) {
    struct Case {
        const char* result;
        double number;
        const char* text;
        bool prefersText;
    };
    const Case cases[] = {{"", 0, "", true}, {"nil", 0, "", true}, {"3.5", 3.5, "", false}, {"' 7 '", 7, " 7 ", true},
        {"'off'", 0, "off", true}, {"2, 'two'", 2, "two", true}, {"'two', 2", 2, "two", true},
        {"'nan'", 0, "nan", true}, {"'1,5'", 0, "1,5", true}};
    for (const auto& [result, number, text, prefersText] : cases) {
        ScriptedSkin skin;
        auto& measure = skin.script("function Update() return " + std::string(result) + " end");
        measure.update();
        EXPECT_EQ(measure.value().numericValue, number) << result;
        EXPECT_EQ(measure.value().stringValue, text) << result;
        EXPECT_EQ(measure.value().preferStringValue, prefersText) << result;
        EXPECT_EQ(skin.depth, 0);
    }
}

TEST(FullScriptMeasure, LifeOfAScript) {
    ScriptedSkin skin;
    skin.folder.write("Skins/Pack/Other.lua", "function Initialize() n = 40 end function Update() return n end");
    auto& measure = skin.script("n = 1 print('body', SELF:GetName())\n"
                                "PROPERTIES = {Color = 'none'}\n"
                                "function Initialize() n = n + 1 print(PROPERTIES.Color) end\n"
                                "function Update() n = n + 1 return n end",
        "S", {{"Color", "red"}});
    EXPECT_EQ(skin.lines,
        (std::vector<std::string>{"allow " + skin.packFolders.root + "S.lua", "log S body\tS", "log S red"}));
    measure.update();
    EXPECT_EQ(measure.value().numericValue, 3);
    // Calling it from Lua changes no value.
    EXPECT_TRUE(measure.executeCommand("Update(); n = n + 10"));
    EXPECT_EQ(measure.value().numericValue, 3);
    measure.update();
    EXPECT_EQ(measure.value().numericValue, 15);

    measure.setOption("ScriptFile", "other.LUA");
    measure.update();
    EXPECT_EQ(measure.value().numericValue, 40) << "a new file starts anew";
    measure.setOption("ScriptFile", "missing.lua");
    measure.update();
    EXPECT_EQ(measure.value().numericValue, 0);
    EXPECT_TRUE(skin.hasLine("log S missing.lua: No such file"));

    skin.allowsAll = false;
    EXPECT_EQ(skin.lua("1"), "") << "without consent nothing runs";
}

TEST(FullScriptMeasure, ReadsTheEncodingsOfSkinFiles) {
    const auto utf16 = [](std::string_view ascii) {
        std::string bytes = "\xFF\xFE";
        for (const char c : ascii)
            bytes += {c, '\0'};
        return bytes;
    };
    ScriptedSkin skin;
    EXPECT_EQ(skin.script(utf16("v = 'wide'"), "Wide").script()->globalText("v"), "wide");
    EXPECT_EQ(skin.script("v = '\xB0'", "Latin").script()->globalText("v"), "\xC2\xB0");
    EXPECT_EQ(skin.script("\xEF\xBB\xBFv = '\xC3\xBC'", "Marked").script()->globalText("v"), "\xC3\xBC");
}

TEST(FullScriptMeasure, SkinObject) {
    ScriptedSkin skin;
    skin.variables = {{"A", "1"}, {"@", "/r/"}};
    skin.add("M", "Calc").setOption("Other", "5");
    const std::pair<const char*, std::string> cases[] = {{"SKIN:GetVariable('A') + 1", "2"},
        {"tostring(SKIN:GetVariable('B'))", "nil"}, {"SKIN:GetVariable('B', 'd')", "d"},
        {"SKIN:GetVariable('@')", "/r/"}, {"tostring(SKIN:GetMeasure('none'))", "nil"},
        {"tostring(SKIN:GetMeter('none'))", "nil"}, {"SKIN:MakePathAbsolute('a\\\\b')", skin.packFolders.root + "a/b"},
        {"SKIN:ParseFormula('(2*3)')", "6"}, {"tostring(SKIN:ParseFormula('(2*'))", "nil"},
        {"SKIN:ReplaceVariables('#A#')", "<#A#>"}, {"SKIN:GetX() + SKIN:GetY() + SKIN:GetW() + SKIN:GetH()", "1000"},
        {"SELF:GetName() .. SELF:GetOption('none') .. SELF:GetOption('none', 'd')", "Sd"},
        {"SKIN:GetMeasure('m'):GetOption('Other', '', false)", "5-"},
        {"SKIN:GetMeasure('M'):GetNumberOption('Other') + SELF:GetNumberOption('none', 2)", "7"},
        {"SKIN:GetMeter('Label'):GetName() .. SKIN:GetMeter('Label'):GetOption('Text')", "Labelshown"},
        {"(function(m) return m:GetX() + m:GetY() + m:GetX(true) * 100 + m:GetW() * m:GetH() "
         "end)(SKIN:GetMeter('Label'))",
            "2303"}};
    for (const auto& [expression, result] : cases)
        EXPECT_EQ(skin.lua(expression), result) << expression << skin.lastLine();
}

TEST(FullScriptMeasure, MeasureHandlesShowValues) {
    ScriptedSkin skin;
    skin.addUpdated("C", "Calc", {{"Formula", "1/4"}, {"MinValue", "0"}, {"MaxValue", "2"}});
    skin.addUpdated("T", "String", {{"String", "text"}});
    EXPECT_EQ(skin.lua("SKIN:GetMeasure('C'):GetValue()"), "0.25");
    EXPECT_EQ(skin.lua("SKIN:GetMeasure('C'):GetStringValue() .. SKIN:GetMeasure('T'):GetStringValue()"), "0.25text");
    EXPECT_EQ(skin.lua("SKIN:GetMeasure('C'):GetMinValue() .. SKIN:GetMeasure('C'):GetMaxValue()"), "02");
    EXPECT_EQ(skin.lua("SKIN:GetMeasure('C'):GetValueRange() .. SKIN:GetMeasure('C'):GetRelativeValue()"), "20.125");
}

TEST(FullScriptMeasure, BangsAndCommands) {
    ScriptedSkin skin;
    skin.add("M", "Calc");
    auto& measure = skin.script("function Do() local m, l = SKIN:GetMeasure('M'), SKIN:GetMeter('Label')\n"
                                "SKIN:Bang('!SetVariable', 'A', 1.5, 2, true, \"it's\")\n"
                                "SKIN:Bang('[!Redraw][!Update]')\n"
                                "m:Disable() m:Enable() l:Hide() l:Show() l:SetX(4) l:SetH(5)\n"
                                "SKIN:MoveWindow(1, 2) SKIN:FadeWindow(0, 255) end");
    skin.lines.clear();
    measure.executeCommand("Do()");
    EXPECT_EQ(skin.lines,
        (std::vector<std::string>{"bang !SetVariable|A|1.5|2|true|it's", "action [!Redraw][!Update]",
            "bang DisableMeasure|M", "bang EnableMeasure|M", "bang HideMeter|Label", "bang ShowMeter|Label",
            "side 0 4.000000", "side 3 5.000000", "move 1.000000 2.000000", "fade 0.000000 255.000000"}));
}

TEST(FullScriptMeasure, InlineCallsTypeTheirArguments) {
    ScriptedSkin skin;
    auto& script
        = *skin.script("name = 'n' flag = true\n"
                       "function Show(...) local s = '' for i = 1, select('#', ...) do\n"
                       "local v = select(i, ...) s = s .. type(v) .. '=' .. tostring(v) .. ';' end return s end\n"
                       "function Half(x) return x / 2 end function None() end function Yes() return true end")
               .script();
    EXPECT_EQ(script.callFunction("Show", {"1.5", "(2+3)", "'it's'", "\"a, b\"", "true", "nil", "word", "os.exit()"}),
        "number=1.5;number=5;string=it's;string=a, b;boolean=true;nil=nil;nil=nil;nil=nil;");
    EXPECT_EQ(script.callFunction("Half", {"3"}), "1.5");
    EXPECT_EQ(script.callFunction("Half", {"(2/3)"}), "0.3333333333") << "at most ten decimals";
    EXPECT_EQ(script.callFunction("Yes", {}), "1");
    EXPECT_EQ(script.globalText("name") + script.globalText("flag"), "n1");
    EXPECT_EQ(script.callFunction("None", {}), "");
    EXPECT_EQ(skin.lastLine(), "log S None gives nothing");
    EXPECT_EQ(script.callFunction("Missing", {}), "");
    EXPECT_EQ(skin.lastLine(), "log S there is no function Missing");
}

TEST(FullScriptMeasure, PatternsAreThoseOfTheLanguage) {
    // Each answers true when our matcher does what the manual says.
    const char* const truths[] = {"('hello world'):find('o w') == 5", "('a.b'):find('.', 1, true) == 2",
        "('hello'):match('^(h)(.-)(l+)') == 'h'", "select(2, ('key = val'):match('(%w+)%s*=%s*(%w+)')) == 'val'",
        "('  x '):gsub('^%s*(.-)%s*$', '%1') == 'x'", "('abc'):gsub('', '-') == '-a-b-c-'",
        "('abc'):gsub('%w', '%0%0', 2) == 'aabbc'", "('$name'):gsub('%$(%w+)', {name = 'v'}) == 'v'",
        "('abc'):gsub('b', function() return false end) == 'abc'", "('f(a(b)c)d'):match('%b()') == '(a(b)c)'",
        "('THE (quick) fox'):find('%f[%a]%a+%f[%A]') == 1", "('[[x]]'):find('[[]') == 1",
        "('a-b]c'):match('[%]-]+') == '-'", "('x^y'):match('[x^]+') == 'x^'", "('abab'):match('(ab)%1') == 'ab'",
        "('hello'):find('') == 1", "('hello'):find('l', -2) == 4", "('hello'):match('()ll()') == 3",
        "('a,b,,c'):gsub(',', ';') == 'a;b;;c'",
        "(function() local n = 0 for w in ('a bc d'):gmatch('%a+') do n = n + #w "
        "end return n end)() == 4",
        "('x'):rep(3) == 'xxx' and ('x'):rep(-1) == ''", "('0x1F'):match('^0[xX](%x+)$') == '1F'",
        "('a\\0b'):find('%z') == 2", "('aXb'):gsub('%u', '%%') == 'a%b'", "not pcall(string.find, 'a', '(a')",
        "not pcall(string.find, 'a', '[a')", "not pcall(string.find, 'a', '%')",
        "not pcall(string.gsub, 'a', 'a', '%2')",
        "select(2, xpcall(function() error('e', 0) end, function(e) return e .. '!' end)) == 'e!'",
        "select(3, xpcall(function() return 1, 2 end, print)) == 2", "('day'):match('d?a?y?$') == 'day'",
        "unpack({1, 2}) == 1 and table.getn({1, 2}) == 2 and math.pow(2, 3) == 8",
        "string.format('%d %5.2f', 3.7, 1) == '3  1.00'", "tostring(1.5) == '1.5' and tonumber('1.5') == 1.5",
        "os.clock() < os.clock() + 1 and os.date('*t').year > 2000 and os.setlocale('C') == nil"};
    for (const auto* truth : truths) {
        ScriptedSkin skin;
        EXPECT_EQ(skin.lua(std::string("(") + truth + ")"), "1") << truth << "\n" << skin.lastLine();
    }
}

TEST(FullScriptMeasure, FilesOfItsPack) {
    ScriptedSkin skin;
    skin.folder.write("Skins/Pack/Data.txt", "one\r\ntwo 2.5\r\n\r\nlast");
    skin.folder.write("Skins/Other/Help.lua", "return ...  or 'helped'");
    skin.variables["S"] = skin.packFolders.settings;
    const std::pair<const char*, const char*> cases[] = {
        {"(function() local s = '' for l in io.lines(SKIN:MakePathAbsolute('data.TXT')) do s = s .. l .. '|' end "
         "return s "
         "end)()",
            "one|two 2.5||last|"},
        {"(function() local f = io.open('Data.txt', 'rb') local s = f:read('*a') f:close() return #s end)()", "20"},
        {"(function() local f = io.open('Data.txt') f:seek('set', 7) local n, r = f:read('*n', '*a') return n .. #r "
         "end)()",
            "2.56"},
        {"dofile(SKIN:MakePathAbsolute('..\\\\Other\\\\help.lua'))", "helped"},
        {"(function() local f = io.open(SKIN:GetVariable('S') .. 'new.txt', 'w') f:write('a\\n', 1) f:close() return "
         "io.open(SKIN:GetVariable('S') .. 'new.txt'):read('*a') end)()",
            "a\n1"},
        {"(function() local f = io.open('Data.txt', 'a') f:write('\\nmore') return io.type(f) .. tostring(f:close()) "
         ".. "
         "io.type(f) end)()",
            "filetrueclosed file"},
        {"tostring(os.rename('Data.txt', 'Moved.txt')) .. tostring(os.remove('Moved.txt')) .. "
         "tostring(io.open('Moved.txt'))",
            "truetruenil"}};
    for (const auto& [expression, result] : cases) {
        EXPECT_EQ(skin.lua(expression), result) << expression << skin.lastLine();
        if (std::string_view(expression).find("more") != std::string_view::npos) {
            EXPECT_EQ(contents(skin.packFolders.root + "Data.txt"), "one\r\ntwo 2.5\r\n\r\nlast\r\nmore");
        }
    }
}

TEST(FullScriptMeasure, FilesOutOfBoundsStayUntouched) {
    ScriptedSkin skin;
    const auto secret = skin.folder.write("secret.txt", "secret");
    skin.folder.write("Skins/Other/theirs.txt", "theirs");
    skin.folder.write("Skins/Pack/run.sh", "old");
    namespace fs = std::filesystem;
    fs::permissions(skin.packFolders.root + "run.sh", fs::perms::owner_all);
    fs::create_symlink(secret, skin.packFolders.root + "link.txt");
    fs::create_directory_symlink(skin.folder.path(), skin.packFolders.root + "up");
    const std::string quoted = "'" + secret + "'";
    const std::string attempts[] = {"io.open(" + quoted + ")", "io.open('..\\\\..\\\\secret.txt')",
        "io.open('link.txt')", "io.open('up/secret.txt')", "io.open('link.txt', 'w')", "io.open(" + quoted + ", 'a')",
        "io.open('../Other/theirs.txt', 'w')", "os.remove('link.txt')", "os.remove('../../secret.txt')",
        "os.rename('../Other/theirs.txt', 'mine.txt')", "os.rename('Skin.ini', '../../secret.txt')",
        "loadfile('up/secret.txt')", "io.open('run.sh', 'w')", "io.open('/etc/passwd')", "io.open('.')",
        "io.open('Skin.ini\\0/x')", "io.popen('id')", "io.open('no/such/folder.txt', 'w')"};
    for (const auto& attempt : attempts) {
        const auto result = skin.lua("(function() local f = " + attempt
            + " if f and io.type(f) then f:write('x') return tostring(f:close()) end return tostring(f) end)()");
        EXPECT_EQ(result, "nil") << attempt;
    }
    EXPECT_EQ(contents(secret) + contents(skin.folder.path() + "/Skins/Other/theirs.txt"), "secrettheirs");
}

TEST(FullScriptMeasure, NothingReachesOutside) {
    const char* const absent[] = {"require", "package", "module", "debug", "newproxy", "collectgarbage", "getfenv",
        "setfenv", "os.exit", "os.getenv", "os.tmpname", "string.dump", "io.stdin", "getmetatable(SKIN) or nil",
        "getmetatable('') or nil", "getmetatable(string) or nil", "getmetatable(SELF) or nil"};
    for (const auto* name : absent) {
        ScriptedSkin skin;
        EXPECT_EQ(skin.lua("type(" + std::string(name) + ")"), "nil") << name;
    }
    // Each is refused with an error, and what it attacks still works.
    const char* const refused[] = {"string.find = nil", "rawset(string, 'find', nil)", "setmetatable(string, {})",
        "getmetatable('').__index = nil", "loadstring('\\27Lua')()", "assert(load(function() return nil end) == nil)",
        "dofile('code.luac')", "SKIN.GetVariable('x')", "SELF.GetValue(SKIN)", "SKIN:GetMeter('Label').GetX(SELF)",
        "SELF.GetValue(io.open('Skin.ini'))"};
    for (const auto* code : refused) {
        ScriptedSkin skin;
        skin.folder.write("Skins/Pack/code.luac", "\x1BLuaQ");
        auto& measure = skin.script("function Still() return ('abc'):find('b') + string.find('abc', 'c') end");
        skin.lines.clear();
        measure.executeCommand(code);
        EXPECT_EQ(skin.lines.size(), 1U) << code;
        EXPECT_EQ(measure.script()->callFunction("Still", {}), "5") << code;
    }
}

TEST(FullScriptMeasure, HostileScriptsAreCutOff) {
    const char* const bodies[] = {"while true do end", "while true do pcall(function() while true do end end) end",
        "local t = {} while true do t[#t + 1] = ('x'):rep(100000) end", "return ('x'):rep(1e9)",
        "return (''):rep(1e18)", "local s = 'x' while true do s = s .. s end",
        "local function f() return 1 + f() end f()", "local function f() pcall(f) end f()",
        "local function f() coroutine.wrap(f)() end f()",
        "local function f() return coroutine.resume(coroutine.create(f)) end f()",
        "while true do coroutine.wrap(function() while true do end end)() end",
        "local s = ('a'):rep(20000) return s:find(('.-'):rep(12) .. 'b')", "return ('x'):find(('x?'):rep(100000))",
        "return (('('):rep(100000)):find(('%b()'):rep(100))", "return ('a'):rep(300000):gsub('.*', '%0%0%0%0'):len()",
        "local t = setmetatable({}, {}) getmetatable(t).__index = t return t.x",
        "return loadstring(('('):rep(100000))()", "local t = {} for i = 1, 1e9 do t[i] = i end",
        "table.insert({}, -2000000000, 1)", "string.gsub(('x'):rep(1e6), 'x', function() while true do end end)",
        "table.sort({3, 1, 2}, function() while true do end end)", "error({})",
        "error(setmetatable({}, {__tostring = "
        "function() while true do end end}))",
        "string.format('%s', setmetatable({}, {__tostring = error}))", "SKIN:ReplaceVariables(('x'):rep(1e9))",
        "return unpack({}, 1, 1e8)", "return ('x'):rep(1e6):byte(1, -1)", "return math.floor(('9'):rep(1e6))",
        "xpcall(function() while true do end end, function() while true do end end)"};
    for (const std::string body : bodies) {
        ScriptedSkin skin;
        skin.folder.write("Skins/Pack/H.lua", "function Hang() " + body + " end function Update() return 7 end");
        MeasureDefinition definition{"H", "Script", std::nullopt, {}};
        definition.allOptions.set("ScriptFile", "H.lua");
        FullScriptMeasure measure(definition, skin, {.memory = 16U << 20, .seconds = 0.1});
        measure.initialize();
        const auto start = std::chrono::steady_clock::now();
        measure.callFunction("Hang", {});
        const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
        EXPECT_LT(spent.count(), 2) << body;
        measure.update();
        EXPECT_EQ(measure.value().numericValue, 7) << body << " " << skin.lastLine();
        EXPECT_EQ(skin.depth, 0);
    }
}

TEST(FullScriptMeasure, EndlessScriptIsStoppedForGood) {
    ScriptedSkin skin;
    skin.folder.write("Skins/Pack/E.lua", "function Update() SKIN:Bang('!Log', 'x') while on do end return 3 end");
    MeasureDefinition definition{"E", "Script", std::nullopt, {}};
    definition.allOptions.set("ScriptFile", "E.lua");
    FullScriptMeasure measure(definition, skin, {.seconds = 0.02});
    measure.update();
    measure.executeCommand("on = true");
    for (int i = 0; i < 5; ++i)
        measure.update();
    EXPECT_EQ(std::ranges::count(skin.lines, "bang !Log|x"), 1 + 3);
    EXPECT_TRUE(skin.hasLine("log E E.lua:1: the script takes too long"));
    EXPECT_EQ(skin.lastLine(), "log E the script is stopped");
    EXPECT_EQ(measure.value().numericValue, 3) << "the last good value stays";
}

TEST(FullScriptMeasure, ErrorsNameFileAndLine) {
    ScriptedSkin skin;
    auto& measure = skin.script("function Ok() return 'ok' end\nlocal x = nil + 1");
    EXPECT_TRUE(skin.hasLine("log S S.lua:2: attempt to perform arithmetic on a nil value"));
    EXPECT_EQ(measure.script()->callFunction("Ok", {}), "ok") << "what the body defined stays";
    measure.executeCommand("this is no code");
    EXPECT_TRUE(skin.lastLine().starts_with("log S command:1:"));
}

TEST(FullScriptMeasure, OpenFilesAreWrittenWhenTheStateEnds) {
    ScriptedSkin skin;
    auto& measure = skin.script("f = io.open('open.txt', 'w') f:write('kept')");
    measure.setOption("ScriptFile", "none.lua");
    measure.update();
    EXPECT_EQ(contents(skin.packFolders.root + "open.txt"), "kept");
}

} // namespace

} // namespace Ostrel
