#include "OstrelEngine/Measures/MeasureTable.h"
#include "OstrelPlatform/DesktopAppearance.h"
#include "OstrelPlatform/PictureColors.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace Ostrel {

namespace {

struct FakePictures final : PictureColors {
    std::optional<RGBColor> average(const std::string& path) override {
        asked = path;
        const auto found = colors.find(path);
        return found == colors.end() ? std::nullopt : std::optional(found->second);
    }
    std::map<std::string, RGBColor> colors;
    std::string asked;
};

struct FakeAppearance final : DesktopAppearance {
    std::optional<RGBColor> accentColor() override { return accent; }
    std::optional<bool> prefersDark() override { return std::nullopt; }
    std::optional<RGBColor> accent;
};

std::string shown(const BaseMeasure& measure) {
    const auto& value = measure.value();
    EXPECT_TRUE(value.preferStringValue);
    EXPECT_EQ(value.numericValue, 0);
    EXPECT_EQ(value.maxValue, 0);
    return value.stringValue;
}

} // namespace

TEST(SysColorPluginMeasure, showsTheAccentColorFromTheFirstMomentOn) {
    FakeAppearance appearance;
    const auto table = MeasureTable::create();
    EXPECT_EQ(shown(table->add("Nothing", "Plugin", {{"Plugin", "SysColor"}})), "0,122,255,255");
    table->fake.platform.appearance = &appearance;
    auto& measure = table->add("M", "Plugin", {{"Plugin", "SysColor.dll"}});
    EXPECT_EQ(shown(measure), "0,122,255,255");
    const struct {
        RGBColor color;
        std::string_view shown;
    } rows[]
        = {{{1, 0.5, 0}, "255,128,0,255"}, {{0.498, 0.0019, 0.0020}, "127,0,1,255"}, {{7, -1, 1}, "255,0,255,255"}};
    for (const auto& row : rows) {
        appearance.accent = row.color;
        EXPECT_EQ(shown(table->add("M", "Plugin", {{"Plugin", "SYSCOLOR"}})), row.shown);
        measure.update();
        EXPECT_EQ(shown(measure), row.shown) << "the desktop changed";
    }
    appearance.accent.reset();
    measure.update();
    EXPECT_EQ(shown(measure), "0,122,255,255");
}

class ChameleonTest : public testing::Test {
protected:
    ChameleonTest() { table->fake.platform.pictures = &pictures; }

    BaseMeasure& add(std::string name, std::string_view key, std::string value) {
        return table->add(std::move(name), "Plugin", {{"Plugin", "Chameleon"}, {key, std::move(value)}});
    }
    BaseMeasure& addLinked(std::string name, std::string_view key, std::string value) {
        auto& measure = add(std::move(name), key, std::move(value));
        measure.resolveReferences();
        return measure;
    }

    FakePictures pictures;
    std::shared_ptr<MeasureTable> table = MeasureTable::create();
};

TEST_F(ChameleonTest, keepsItsColorWhileThereIsNoOther) {
    pictures.colors["/a.png"] = {1, 0.5, 0.25};
    auto& measure = addLinked("M", "Path", "");
    measure.update();
    EXPECT_EQ(shown(measure), "255,255,255,255");
    EXPECT_EQ(pictures.asked, "");
    setAndUpdate(measure, "Path", " /a.png ");
    EXPECT_EQ(shown(measure), "255,128,64,255");
    for (const char* path : {"/none.png", "", "  ", "[]", "["}) {
        setAndUpdate(measure, "Path", path);
        EXPECT_EQ(shown(measure), "255,128,64,255") << path;
    }
    pictures.colors["/a.png"] = {0, 0, 0};
    setAndUpdate(measure, "Path", "\\a.png");
    EXPECT_EQ(shown(measure), "0,0,0,255");
}

TEST_F(ChameleonTest, findsThePictureAsTheSkinNamesIt) {
    auto& measure = addLinked("M", "Path", "");
    auto& cover = table->add("Cover", "String", {{"String", "art\\cover.jpg"}});
    cover.update();
    const struct {
        std::string_view path, asked;
    } rows[] = {{"sub\\a.png", "/sub/a.png"}, {"[Cover]", "/art/cover.jpg"}, {"[ cOVER ]", "/art/cover.jpg"},
        {"[Unknown]", "/[Unknown]"}, {"#CURRENTPATH#a.png", "/a.png"}, {"#currentpath#b.png", "/b.png"},
        {"#@#a.png", "/@Resources/a.png"}};
    for (const auto& row : rows) {
        setAndUpdate(measure, "Path", row.path);
        EXPECT_EQ(pictures.asked, row.asked);
    }
    setAndUpdate(cover, "String", "other.jpg");
    setAndUpdate(measure, "Path", "[Cover]");
    EXPECT_EQ(pictures.asked, "/other.jpg") << "it follows the measure";
    setAndUpdate(cover, "String", "");
    pictures.asked = "nothing";
    measure.update();
    EXPECT_EQ(pictures.asked, "nothing");
}

TEST_F(ChameleonTest, showsWhatItsParentShows) {
    pictures.colors = {{"/a.png", {1, 0, 0}}, {"/b.png", {0, 0, 1}}};
    auto& parent = add("Parent", "Path", "/a.png");
    auto& child = addLinked("Child", "Parent", "pARENT");
    child.setOption("Path", "/b.png");
    child.update();
    EXPECT_EQ(shown(child), "255,255,255,255") << "also before the parent has run";
    parent.update();
    child.update();
    EXPECT_EQ(shown(child), "255,0,0,255");
    table->add("Other", "Calc", {{"Formula", "1"}});
    for (const char* name : {"Other", "Nobody", ""}) {
        auto& orphan = addLinked("Orphan", "Parent", name);
        setAndUpdate(orphan, "Path", "/b.png");
        EXPECT_EQ(shown(orphan), "0,0,255,255") << name;
    }
    auto& own = add("Own", "Parent", "Own");
    own.resolveReferences();
    setAndUpdate(own, "Path", "/b.png");
    EXPECT_EQ(shown(own), "255,255,255,255");
}

} // namespace Ostrel
