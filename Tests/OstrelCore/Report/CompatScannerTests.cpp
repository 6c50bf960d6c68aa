#include "OstrelCore/Report/CompatScanner.h"

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelCore/Report/CompatPatterns.h"
#include "OstrelCore/Report/CompatReportFormatter.h"

#include <gtest/gtest.h>

#include <array>
#include <gmock/gmock.h>
#include <random>
#include <unicode/regex.h>

namespace Ostrel {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

CompatReport reportOf(const std::string& text) {
    InMemoryFileProvider files;
    files.addFile("/s/x.ini", text);
    DiagnosticCollector diagnostics;
    const auto config = SkinLoader(files, diagnostics).load("/s/x.ini");
    return config ? CompatScanner::scan(*config) : CompatReport{};
}

/// The report's findings, one a line.
std::vector<std::string> findings(const std::string& text) {
    std::vector<std::string> lines;
    for (const auto& finding : reportOf(text).findings) {
        EXPECT_EQ(finding.location, std::nullopt);
        lines.push_back(std::string(rawText(finding.severity)) + " | " + finding.category + " | "
            + finding.sectionName.value_or("-") + " | " + finding.message);
    }
    return lines;
}

} // namespace

TEST(CompatScanner, reportsMeasureTypes) {
    EXPECT_THAT(findings("[A]\nMeasure=Registry\n[B]\nmeasure=sysinfo\n[C]\nMeasure=Ping\n[D]\nMeasure=calc\n"),
        ElementsAre("incompatible | Windows-only Measure | A | Measure type 'Registry' is Windows-only",
            "warning | Partial Support | B | Measure type 'sysinfo' has limited macOS support",
            "warning | Unknown Measure | C | Unknown measure type 'Ping'"));
}

TEST(CompatScanner, reportsPlugins) {
    enum class Expected { nothing, replacement, library };
    const std::vector<std::pair<std::string, Expected>> cases = {
        {"WebParser.dll", Expected::library},
        {"WebParser", Expected::replacement},
        {"Foo.Dll", Expected::library},
        {"Foo", Expected::nothing},
        {"NowPlaying.dll", Expected::nothing},
        {"now.DLLplaying", Expected::nothing},
        {"Sys.dllInfo", Expected::replacement},
        {"SysInfo.dllx", Expected::nothing},
        {"Mouse.D.dllLL", Expected::nothing},
        {"Mouse.d.dllll.dll", Expected::library},
    };
    for (const auto& [plugin, expected] : cases) {
        std::vector<std::string> lines;
        if (expected == Expected::replacement)
            lines = {"warning | Plugin | A | Plugin '" + plugin + "' may require a macOS-native replacement"};
        if (expected == Expected::library)
            lines = {"incompatible | DLL Plugin | A | DLL plugin '" + plugin
                + "' is a Windows native plugin and cannot run on macOS"};
        EXPECT_EQ(findings("[A]\nMeasure=PlugIn\nPlugin=" + plugin + "\n"), lines);
    }
    EXPECT_THAT(findings("[A]\nMeasure=Plugin\n"), IsEmpty());
}

TEST(CompatScanner, reportsMetersActionsAndPathsInTheirOrder) {
    EXPECT_THAT(findings("[Variables]\nPath=C:\\x\n"
                         "[M]\nMeter=ActiveNet\nLeftMouseUpAction=[\"#Path#\\x.exe\"]\nLEFTMOUSEUPACTION=y.exe\n"
                         "[N]\nMeter=Dial\nCommand1=foo.EXE\nText=foo.exe %APPDATA% D:\\y\n"
                         "[P]\nMeasure=Registry\n"),
        ElementsAre("incompatible | Windows-only Measure | P | Measure type 'Registry' is Windows-only",
            "incompatible | Windows-only Meter | M | Meter type 'ActiveNet' is Windows-only",
            "warning | Unknown Meter | N | Unknown meter type 'Dial'",
            "warning | Windows Executable | M | Action references a Windows .exe: [\"C:\\x\\x.exe\"]",
            "warning | Windows Executable | N | Action references a Windows .exe: foo.EXE",
            "warning | Windows Path | Variables | Value contains Windows-specific path: C:\\x",
            "warning | Windows Path | M | Value contains Windows-specific path: [\"C:\\x\\x.exe\"]",
            "warning | Windows Path | N | Value contains Windows-specific path: foo.exe %APPDATA% D:\\y"));
    EXPECT_THAT(findings("[M]\nMeter=String\nActionX=a.exe\nRecommandation=a.exex\n"), IsEmpty());
}

TEST(CompatScanner, derivesTheVerdictFromTheWorstFinding) {
    EXPECT_EQ(reportOf("[Rainmeter]\nUpdate=1000\n").verdict, CompatVerdict::compatible);
    EXPECT_EQ(reportOf("[A]\nMeasure=Ping\n").verdict, CompatVerdict::partiallyCompatible);
    EXPECT_EQ(reportOf("[A]\nMeasure=Ping\n[B]\nMeasure=Registry\n").verdict, CompatVerdict::incompatible);
}

TEST(CompatPatterns, agreeWithTheirRegularExpressions) {
    struct Pattern {
        const char16_t* text;
        uint32_t flags;
        bool (*contains)(std::string_view);
    };
    const std::array patterns = {
        Pattern{uR"(\"[^\"]*\.exe\"|\b[^\s\"']+\.exe\b)", UREGEX_CASE_INSENSITIVE, CompatPatterns::containsExecutable},
        Pattern{uR"([A-Za-z]:\\)", 0, CompatPatterns::containsDrivePath},
        Pattern{u"%[A-Za-z]+%", 0, CompatPatterns::containsEnvironmentVariable},
    };
    // Pieces on either side of what the patterns tell apart: word and other characters, blanks, quotes, combining marks
    // and format characters, capitals of letters beyond ASCII.
    const std::vector<std::string> pieces
        = {".exe", ".EXE", ".eXe", "exe", ".", "e", "x", "a", "Z", "_", "7", "-", "\"", "\"", "'", " ", "\t", "\n",
            "\\", ":", ":\\", "C:\\", "%", "%", "%ab%", "/", "[", "{", "~", "\xC3\xA9", "\xC5\xBF", "\xE2\x84\xAA",
            "\xCC\x81", "\xE2\x80\x8D", "\xE2\x80\x8C", "\xC2\xAD", "\xE2\x81\xA0", "\xC2\xA0", "\xE3\x80\x80",
            "\xE2\x80\xA8", "\xE2\x80\xBF", "\xD9\xA3", "\xE6\xBC\xA2", "\xF0\x9F\x98\x80", "\xF0\x9D\x90\x80",
            "\xE2\x85\xA7", "\xE1\xA0\x8E", "\xEF\xBB\xBF", "\x1C", "\xC2\x85", "\xEF\xBD\x81", "\xE0\xA4\xBE"};
    std::mt19937 random(7);
    int matches = 0;
    for (const auto& pattern : patterns) {
        UErrorCode error = U_ZERO_ERROR;
        icu::RegexMatcher matcher(icu::UnicodeString(pattern.text), pattern.flags, error);
        for (int i = 0; i < 60'000; ++i) {
            std::string text;
            for (auto length = random() % 9; length > 0; --length)
                text += pieces[random() % pieces.size()];
            const auto unicode = icu::UnicodeString::fromUTF8(text);
            const bool expected = matcher.reset(unicode).find();
            matches += expected;
            ASSERT_EQ(pattern.contains(text), expected) << testing::PrintToString(text);
        }
    }
    EXPECT_GT(matches, 5'000);
}

TEST(CompatReportFormatter, writesText) {
    CompatReport report{"/s/x.ini", std::nullopt, CompatVerdict::compatible, {}};
    EXPECT_EQ(CompatReportFormatter::formatText(report),
        "Compatibility Report\n====================\nSkin: Unknown\nFile: /s/x.ini\nVerdict: compatible\n\n"
        "No compatibility issues found.\n\nSummary: 0 incompatible, 0 warnings");
    report = {"/s/x.ini", "My Skin", CompatVerdict::incompatible,
        {{CompatFinding::Severity::incompatible, "One", "First", "A", std::nullopt},
            {CompatFinding::Severity::warning, "Two", "Second", std::nullopt, std::nullopt},
            {CompatFinding::Severity::info, "Three", "Third", "B", std::nullopt}}};
    EXPECT_EQ(CompatReportFormatter::formatText(report),
        "Compatibility Report\n====================\nSkin: My Skin\nFile: /s/x.ini\nVerdict: incompatible\n\n"
        "Findings (3):\n\n[INCOMPATIBLE] One in [A]: First\n[WARNING] Two: Second\n[INFO] Three in [B]: Third\n\n"
        "Summary: 1 incompatible, 1 warnings");
}

TEST(CompatReportFormatter, writesJSONWithSortedKeys) {
    const CompatReport report{"/s/x\xFF.ini", "N", CompatVerdict::partiallyCompatible,
        {{CompatFinding::Severity::warning, "C", "\"\xC3\xA4\"\n", "A", std::nullopt},
            {CompatFinding::Severity::info, "D", "m", std::nullopt, std::nullopt}}};
    const std::string expected = R"({
  "findings": [
    {
      "category": "C",
      "message": "\"ä\"\n",
      "section": "A",
      "severity": "warning"
    },
    {
      "category": "D",
      "message": "m",
      "severity": "info"
    }
  ],
  "incompatibleCount": 0,
  "skinName": "N",
  "skinPath": "/s/x�.ini",
  "verdict": "partiallyCompatible",
  "warningCount": 1
})";
    EXPECT_EQ(CompatReportFormatter::formatJSON(report), expected);
    const CompatReport clean{"/a", std::nullopt, CompatVerdict::compatible, {}};
    EXPECT_EQ(CompatReportFormatter::formatJSON(clean),
        "{\n  \"findings\": [],\n  \"incompatibleCount\": 0,\n  \"skinPath\": \"/a\",\n  \"verdict\": \"compatible\",\n"
        "  \"warningCount\": 0\n}");
}

} // namespace Ostrel
