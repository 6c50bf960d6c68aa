#include "Support/CommandLine.h"
#include "Support/TemporaryFolder.h"
#include "Support/ZipBuilder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <gmock/gmock.h>

namespace Ostrel {

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class ListAndReportTest : public testing::Test {
protected:
    ListAndReportTest() { setenv("TMPDIR", temporary_.path().c_str(), 1); }
    ~ListAndReportTest() override { unsetenv("TMPDIR"); }

    std::string path(std::string_view relative) const { return folder_.path() + "/" + std::string(relative); }

    TemporaryFolder folder_;
    TemporaryFolder temporary_;
};

} // namespace

TEST_F(ListAndReportTest, listsSkinsOneALine) {
    folder_.write("b.INI", "");
    folder_.write("a/x.ini", "");
    folder_.write("a/notes.txt", "");
    const auto result = runOstrel({"list", path("b.INI"), folder_.path()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, path("a/x.ini") + "\n" + path("b.INI") + "\n");
    EXPECT_EQ(result.messages, "");
    const auto none = runOstrel({"list", path("a/notes.txt")});
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.output, "");
}

TEST_F(ListAndReportTest, listsWhatItCanAndTellsWhatItCannotRead) {
    folder_.write("a.ini", "");
    folder_.write("bad.rmskin", "no archive");
    const auto result = runOstrel({"list", path("missing"), path("a.ini"), path("bad.rmskin")});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, path("a.ini") + "\n");
    EXPECT_EQ(result.messages,
        "ostrel: cannot read " + path("missing") + "\nostrel: cannot read " + path("bad.rmskin") + "\n");
}

TEST_F(ListAndReportTest, unpacksAPackageWhereItsSkinsStay) {
    const auto package = folder_.write("p.rmskin",
        withPackageFooter(
            ZipBuilder().add({"RMSKIN.ini", ""}).add({"Skins\\A\\a.ini", "[M]\r\nMeasure=Registry\r\n"}).build()));
    const auto listed = runOstrel({"list", package});
    EXPECT_EQ(listed.status, 0);
    EXPECT_THAT(listed.output, StartsWith(temporary_.path() + "/OstrelRMSkinExtraction/"));
    EXPECT_THAT(listed.output, EndsWith("/Skins/A/a.ini\n"));
    const auto reported = runOstrel({"report", listed.output.substr(0, listed.output.size() - 1)});
    EXPECT_EQ(reported.status, 0);
    EXPECT_THAT(reported.output, HasSubstr("Verdict: incompatible\n"));
}

TEST_F(ListAndReportTest, reportsAsTextWithOneEmptyLineBetween) {
    folder_.write("a.ini", "[Metadata]\nName=N\n");
    folder_.write("b.ini", "[M]\nMeter=Dial\n");
    const auto result = runOstrel({"report", folder_.path()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output,
        "Compatibility Report\n====================\nSkin: N\nFile: " + path("a.ini")
            + "\nVerdict: compatible\n\nNo compatibility issues found.\n\nSummary: 0 incompatible, 0 warnings\n\n"
              "Compatibility Report\n====================\nSkin: Unknown\nFile: "
            + path("b.ini")
            + "\nVerdict: partiallyCompatible\n\nFindings (1):\n\n[WARNING] Unknown Meter in [M]: Unknown meter type "
              "'Dial'\n\nSummary: 0 incompatible, 1 warnings\n");
}

TEST_F(ListAndReportTest, reportsAsOneArrayOfJSON) {
    const auto skin = folder_.write("a.ini", "");
    const auto missing = path("folder.ini/b.ini");
    folder_.write("folder.ini/c.txt", "");
    const auto result = runOstrel({"report", "--json", skin, path("folder.ini"), missing});
    EXPECT_EQ(result.status, 1) << result.messages;
    EXPECT_EQ(result.output,
        "[\n  {\n    \"findings\": [],\n    \"incompatibleCount\": 0,\n    \"skinPath\": \"" + skin
            + "\",\n    \"verdict\": \"compatible\",\n    \"warningCount\": 0\n  }\n]\n");
    const auto unloadable = runOstrel({"report", folder_.path(), "--json"});
    EXPECT_EQ(unloadable.status, 1) << "a folder that is named like a skin stands for one";
    EXPECT_EQ(unloadable.output, result.output);
    EXPECT_THAT(unloadable.messages, HasSubstr("ostrel: error: Cannot read file: " + path("folder.ini") + "\n"));
    EXPECT_EQ(runOstrel({"report", "--json", path("folder.ini")}).output, "[]\n");
}

TEST_F(ListAndReportTest, explainsItsUsage) {
    const std::string list = "usage: ostrel list PATH...\n";
    const std::string report = "usage: ostrel report [--json] PATH...\n";
    for (const auto& arguments :
        std::vector<std::vector<std::string>>{{"list"}, {"list", "--json", "."}, {"list", ".", "--x"}}) {
        const auto result = runOstrel(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.messages, "ostrel: " + list);
    }
    for (const auto& arguments :
        std::vector<std::vector<std::string>>{{"report"}, {"report", "--json"}, {"report", "--text", "."}}) {
        const auto result = runOstrel(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.messages, "ostrel: " + report);
    }
    EXPECT_EQ(runOstrel({"list", "--help"}).output, list);
    EXPECT_EQ(runOstrel({"report", "--help"}).output, report);
}

} // namespace Ostrel
