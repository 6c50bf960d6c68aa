#include "OstrelCore/Documents/SkinLoader.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

namespace Ostrel {

namespace {

/// Loads "/s/skin.ini" from memory and counts what was reported.
class SkinLoaderTest : public ::testing::Test {
protected:
    std::optional<SkinConfig> load(std::string text) {
        files.addFile("/s/skin.ini", std::move(text));
        return SkinLoader(files, diagnostics).load("/s/skin.ini");
    }

    InMemoryFileProvider files;
    DiagnosticCollector diagnostics;
};

std::string text(const Options& options) {
    std::string result;
    for (const auto& entry : options)
        result += entry.key + "=" + entry.value + ";";
    return result;
}

} // namespace

TEST_F(SkinLoaderTest, classifiesSectionsByNameThenByKeys) {
    const auto config
        = load("[rainmeter]\nUPDATE=50\n[Metadata]\nname=N\n[ Rainmeter ]\nUpdate=1\n"
               "[StyleB]\nFontSize=10\n[M]\nmeasure=plugin\nPlugin=Foo.dll\n[C]\nMeasure=Calc\nPlugin=Foo\n"
               "[Both]\nMeter=String\nMeasure=Time\n[T]\nMeter=String\nMeterStyle=StyleA | styleb\n"
               "[T2]\nMeter=Image\nMeterStyle=T\n");
    ASSERT_TRUE(config);
    EXPECT_EQ(config->rainmeterOptions.update, 50);
    EXPECT_EQ(config->metadata.name, "N");
    EXPECT_THAT(config->unknownSections, ::testing::ElementsAre(" Rainmeter "));
    ASSERT_EQ(config->measures.size(), 3U);
    EXPECT_EQ(config->measures[0].pluginName, "Foo.dll");
    EXPECT_EQ(config->measures[1].pluginName, std::nullopt);
    EXPECT_EQ(config->measures[2].sectionName, "Both");
    ASSERT_EQ(config->meters.size(), 2U);
    EXPECT_EQ(config->meters[0].meterStyleRef, "StyleA | styleb");
    ASSERT_EQ(config->styles.size(), 1U);
    EXPECT_EQ(text(config->styles[0].allOptions), "FontSize=10;");
    EXPECT_TRUE(diagnostics.diagnostics().empty());
}

TEST_F(SkinLoaderTest, expandsVariablesThatStandBelowTheirUsersAndNamesOfIncludes) {
    files.addFile("/s/sub/more.inc", "[Variables]\nA=other\nC=#B#\n[X]\nFrom=#CURRENTFILE#\n");
    const auto config = load("[X]\n@Include=#Dir#\\more.inc\nT=#A##C##Unknown#\n[Variables]\nA=#B#\nB=1\nDir=sub\n");
    ASSERT_TRUE(config);
    EXPECT_EQ(text(config->variables), "A=other;C=1;B=1;Dir=sub;")
        << "the merged document keeps reading order, expansion the main file's own values";
    EXPECT_EQ(*config->rawDocument.section("x")->value("t"), "11#Unknown#");
    EXPECT_EQ(*config->rawDocument.section("x")->value("from"), "skin.ini");
    EXPECT_TRUE(diagnostics.diagnostics().empty());
}

TEST_F(SkinLoaderTest, readsWholeNumbersOnly) {
    const struct {
        std::string_view value;
        std::int64_t update;
        std::optional<std::int64_t> mode;
    } rows[] = {{"50", 50, 50}, {"-1", -1, -1}, {"+7", 7, 7}, {"16.5", 1000, {}}, {"1000.0", 1000, {}},
        {"fast", 1000, {}}, {"", 1000, {}}, {"#N#", 250, 250}, {"9223372036854775808", 1000, {}}};
    for (const auto& row : rows) {
        const std::string value(row.value);
        const auto config
            = load("[Variables]\nN=250\n[Rainmeter]\nUpdate=" + value + "\nBackgroundMode=" + value + "\n");
        EXPECT_EQ(config->rainmeterOptions.update, row.update) << value;
        EXPECT_EQ(config->rainmeterOptions.backgroundMode, row.mode) << value;
    }
    EXPECT_EQ(*load(""), *load("junk\n")) << "an empty skin has all its defaults";
}

TEST_F(SkinLoaderTest, letsTheFirstPassSeeTheMainFileAsItStands) {
    files.addFile("/s/a.inc", "[Variables]\nV=included\n");
    const auto config = load("[Variables]\n@Include=a.inc\nV=own\nW=#V#\nFile=#@Include#\n[Y]\nK=#V#\n");
    EXPECT_EQ(text(config->variables), "V=included;W=own;File=a.inc;")
        << "what is written on stays with the file's own value, and the include's key is a variable";
    EXPECT_EQ(*config->rawDocument.section("Y")->value("K"), "own");
}

TEST_F(SkinLoaderTest, tellsOnceWhyItCannotLoad) {
    EXPECT_FALSE(SkinLoader(files, diagnostics).load("/none.ini"));
    ASSERT_EQ(diagnostics.diagnostics().size(), 1U);
    EXPECT_EQ(diagnostics.diagnostics()[0].description(), "error: Cannot read file: /none.ini");
}

TEST(SkinLoader, loadsEveryRealSkin) {
    const char* source = std::getenv("OSTREL_SOURCE");
    const auto folder = std::filesystem::path(source ? source : ".") / "../shared/skins";
    if (!std::filesystem::is_directory(folder))
        GTEST_SKIP() << "there are no skins at " << folder;
    int loaded = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file() || !equalsIgnoringCase(entry.path().extension().string(), ".ini"))
            continue;
        DiskFileProvider disk;
        DiagnosticCollector reports;
        const auto config = SkinLoader(disk, reports).load(entry.path().string());
        ASSERT_TRUE(config) << entry.path();
        std::size_t classified
            = config->measures.size() + config->meters.size() + config->styles.size() + config->unknownSections.size();
        for (const auto* name : {"Rainmeter", "Metadata", "Variables"})
            classified += config->rawDocument.section(name) ? 1 : 0;
        EXPECT_EQ(classified, config->rawDocument.sections.size()) << entry.path();
        EXPECT_TRUE(reports.warnings().empty()) << entry.path() << reports.warnings()[0].description();
        ++loaded;
    }
    EXPECT_GT(loaded, 0);
}

} // namespace Ostrel
