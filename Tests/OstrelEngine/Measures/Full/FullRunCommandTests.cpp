#include "OstrelPlatform/Linux/Programs/LinuxProgramRunner.h"
#include "Support/FakeWorkspace.h"
#include "Support/ScriptedSkin.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace Ostrel {

namespace {

struct ProgramSkin : ScriptedSkin {
    LinuxProgramRunner runner{fake.queue};

    ProgramSkin() { ports.programs = &runner; }
    /// Runs shell code and gives the number that stands when it has ended.
    BaseMeasure& finished(Pairs options) {
        auto& measure = add("R", "Plugin:RunCommand", options);
        measure.setOption("FinishAction", "done");
        measure.executeCommand("Run");
        EXPECT_TRUE(waitFor([&] { return measure.value().numericValue != 0; }));
        return measure;
    }
    std::string file(const std::string& name) const {
        std::ifstream stream(packFolders.root + name, std::ios::binary);
        std::ostringstream bytes;
        bytes << stream.rdbuf();
        return bytes.str();
    }
};

TEST(FullRunCommand, OutputOfAProgram) {
    setenv("OSTREL_SECRET", "leaked", 1);
    struct Case {
        const char* code;
        std::string text;
    };
    ProgramSkin folder;
    const Case cases[] = {{"printf 'a\\nb\\n'", "a\nb\n"}, {"printf '\\303\\274'", "\xC3\xBC"},
        {"printf '\\377\\376a\\000b\\000'", "ab"}, {"printf 'a\\000b\\000'", "ab"}, {"printf '\\374'", "\xC3\xBC"},
        {"cat", ""}, {"echo err >&2; exit 3", ""}, {"echo $OSTREL_SECRET", "\n"}, {"ls /proc/self/fd | wc -l", "4\n"},
        // A child that outlives it and keeps the pipe open.
        {"echo now; sleep 30 &", "now\n"}};
    for (const auto& [code, text] : cases) {
        ProgramSkin skin;
        auto& measure = skin.finished({{"Parameter", code}});
        EXPECT_EQ(measure.value().numericValue, 1) << code;
        EXPECT_EQ(measure.value().stringValue, text) << code;
        EXPECT_EQ(skin.lastLine(), "run done");
    }
    ProgramSkin skin;
    auto& measure = skin.finished({{"Program", "\"\"printf\"\""}, {"Parameter", "'%s.' \"a b\" it's"}});
    EXPECT_EQ(measure.value().stringValue, "'a b.''it's.'");
    EXPECT_TRUE(skin.lines.front().ends_with("printf '%s.' \"a b\" it's")) << "consent is for the whole line";
}

TEST(FullRunCommand, WritesItsOutputFile) {
    struct Case {
        const char* type;
        const char* file;
        double number;
        std::string bytes;
    };
    using namespace std::string_literals;
    const Case cases[]
        = {{"UTF8", "o.txt", 1, "\xC3\xBC"s}, {"ansi", "o.txt", 1, "\xFC"s}, {"UTF16", "o.txt", 1, "\xFF\xFE\xFC\x00"s},
            {"UTF8", "../o.txt", 104, ""s}, {"UTF8", "/tmp/ostrel-o", 104, ""s}};
    for (const auto& [type, file, number, bytes] : cases) {
        ProgramSkin skin;
        auto& measure
            = skin.finished({{"Parameter", "printf '\\303\\274'"}, {"OutputType", type}, {"OutputFile", file}});
        EXPECT_EQ(measure.value().numericValue, number) << file;
        EXPECT_EQ(skin.file("o.txt"), bytes) << type;
    }
}

TEST(FullRunCommand, TellsWhatFails) {
    ProgramSkin skin;
    skin.folder.write("Skins/Pack/plain.txt", "");
    const std::pair<const char*, const char*> refused[] = {{"Program", "tool.EXE"}, {"Program", "C:\\x\\powershell"},
        {"Program", "no-such-program"}, {"Program", "plain.txt"}, {"Other", "x"}};
    for (const auto& [key, value] : refused) {
        auto& measure = skin.add("R", "Plugin:RunCommand", {{key, value}, {"FinishAction", "never"}});
        EXPECT_EQ(measure.value().numericValue, -1);
        measure.executeCommand("");
        EXPECT_EQ(measure.value().numericValue, 103) << value;
    }
    EXPECT_FALSE(skin.hasLine("allow"));
    EXPECT_FALSE(skin.hasLine("never"));

    auto& measure = skin.add("S", "Plugin:RunCommand", {{"Parameter", "sleep 30"}, {"FinishAction", "done"}});
    measure.executeCommand("Dance");
    EXPECT_EQ(measure.value().numericValue, 100);
    measure.executeCommand("Close");
    EXPECT_EQ(measure.value().numericValue, 102);
    skin.allowsAll = false;
    measure.executeCommand("Run");
    EXPECT_EQ(measure.value().numericValue, 103);
    EXPECT_TRUE(skin.hasLine("allow /bin/sh -c sleep 30"));
    skin.allowsAll = true;
    measure.executeCommand("Run");
    EXPECT_EQ(measure.value().numericValue, 0);
    measure.executeCommand("Run");
    EXPECT_EQ(measure.value().numericValue, 101);
    measure.executeCommand("Kill");
    EXPECT_TRUE(skin.waitFor([&] { return measure.value().numericValue == 1; }));
}

TEST(FullRunCommand, HostileProgramsEnd) {
    ProgramSkin skin;
    auto& measure = skin.finished({{"Parameter", "yes"}});
    EXPECT_EQ(measure.value().stringValue.size(), 1U << 20);
    EXPECT_TRUE(skin.hasLine("printed too much"));

    auto& endless = skin.add("E", "Plugin:RunCommand",
        {{"Parameter", "trap '' TERM; echo $$ > pid; while :; do sleep 1; done"}, {"Timeout", "500"},
            {"FinishAction", "ended"}});
    endless.executeCommand("Run");
    EXPECT_TRUE(skin.waitFor([&] { return !skin.file("pid").empty(); }));
    skin.fake.queue.runFor(1);
    EXPECT_TRUE(skin.waitFor([&] { return skin.hasLine("run ended"); }));
    EXPECT_EQ(endless.value().numericValue, 1);

    for (int i = 0; i < 8; ++i)
        skin.add("P" + std::to_string(i), "Plugin:RunCommand", {{"Parameter", "sleep 30"}}).executeCommand("Run");
    auto& ninth = skin.add("P", "Plugin:RunCommand", {{"Parameter", "true"}});
    ninth.executeCommand("Run");
    EXPECT_EQ(ninth.value().numericValue, 103);
}

} // namespace

} // namespace Ostrel
