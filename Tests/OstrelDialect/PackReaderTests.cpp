#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelDialect/PackReader.h"
#include "OstrelDialect/PackReport.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace Ostrel {
namespace {

using testing::ElementsAre;

PackFolders foldersOf(const std::string& skin) {
    return PackFolders::find(skin, std::nullopt, std::nullopt, "/nowhere/packs");
}

/// Files below "/s/Skins/Pack/".
struct Pack {
    Pack& file(const std::string& name, std::string text) {
        files.addFile("/s/Skins/Pack/" + name, std::move(text));
        return *this;
    }
    PackSkin read(const std::string& name = "skin.ini") {
        return PackReader(files).read(foldersOf("/s/Skins/Pack/" + name)).value();
    }

    InMemoryFileProvider files;
};

std::vector<std::string> sectionNames(const PackSkin& skin) {
    std::vector<std::string> names;
    for (const auto& section : skin.sections)
        names.push_back(section.name);
    return names;
}

std::string valueOf(const PackSkin& skin, std::string_view section, std::string_view key) {
    for (const auto& candidate : skin.sections) {
        if (candidate.name == section)
            return candidate.options.find(key) ? *candidate.options.find(key) : "missing";
    }
    return "no section";
}

TEST(PackReader, mergesIncludedFilesInReadingOrder) {
    const auto skin
        = Pack()
              .file("skin.ini",
                  "[Variables]\nA=1\n@Include=v.inc\nB=3\nA=9\n[M1]\nMeter=String\nX=1\n@Include2=m.inc\nY=2\n"
                  "[Last]\nMeter=Image\n[N2]\nW=7\n[End]\nMeter=Bar\n")
              .file("v.inc", "[Variables]\nA=2\nB=2\nC=#A#\n")
              .file("m.inc", "[N1]\nMeter=Bar\n@Include=deep/d.inc\n[M1]\nX=5\nY=5\n[N2]\nMeter=Line\nW=1\nH=1\n")
              .file("deep/d.inc", "[D]\nMeter=Shape\n@Include=up.inc\n")
              .file("up.inc", "[D]\nShape=x\n")
              .read();
    EXPECT_THAT(sectionNames(skin), ElementsAre("Variables", "M1", "N1", "D", "N2", "Last", "End"));
    // Between files the later line wins; in one file the first of two.
    EXPECT_EQ(*skin.variables.find("A"), "2");
    EXPECT_EQ(*skin.variables.find("B"), "3");
    EXPECT_EQ(*skin.variables.find("C"), "2");
    EXPECT_EQ(valueOf(skin, "M1", "X"), "5");
    EXPECT_EQ(valueOf(skin, "M1", "Y"), "2");
    EXPECT_EQ(valueOf(skin, "N2", "W"), "7");
    EXPECT_EQ(valueOf(skin, "N2", "H"), "1");
    // A relative include is looked for beside its file, then in the skin's folder.
    EXPECT_EQ(valueOf(skin, "D", "Shape"), "x");
    EXPECT_TRUE(skin.diagnostics.empty());
}

TEST(PackReader, ignoresARepeatedHeadAndKeysBeforeTheFirst) {
    const auto skin
        = Pack()
              .file("skin.ini", "Stray=1\n@Include=i.inc\n[ A ]\nMeter=String\nX=1\n[B]\nK=1\n[a]\nX=2\nY=3\n")
              .file("i.inc", "[I]\nMeasure=Calc\n")
              .read();
    EXPECT_THAT(sectionNames(skin), ElementsAre("I", "A", "B"));
    EXPECT_EQ(valueOf(skin, "A", "X"), "1");
    EXPECT_EQ(valueOf(skin, "A", "Y"), "missing");
    EXPECT_EQ(skin.sections[0].kind, PackSection::Kind::Measure);
    EXPECT_EQ(skin.sections[2].kind, PackSection::Kind::Other);
    EXPECT_EQ(skin.diagnostics.size(), 1U);
}

TEST(PackReader, boundsIncludesThatNeverEnd) {
    const auto skin = Pack().file("skin.ini", "[A]\n@Include=skin.ini\n@Include2=skin.ini\n[B]\nMeter=Bar\n").read();
    EXPECT_THAT(sectionNames(skin), ElementsAre("A", "B"));
    EXPECT_EQ(skin.diagnostics.size(), 1U);
}

TEST(PackFolders, findTheRootOfAPack) {
    const TemporaryFolder folder;
    const auto base = folder.path() + "/x";
    std::filesystem::create_directories(base + "/Skins/Pack/Sub/Deep/@Resources");
    std::filesystem::create_directories(base + "/loose/Top/@resources");
    std::filesystem::create_directories(base + "/loose/Top/Sub/@Resources");
    const auto inSkins = foldersOf(base + "/Skins/Pack/Sub/Deep/a.ini");
    EXPECT_EQ(inSkins.root, base + "/Skins/Pack/");
    EXPECT_EQ(inSkins.config, "Pack\\Sub\\Deep");
    EXPECT_EQ(inSkins.variable("SkinsPath"), base + "/Skins/");
    EXPECT_EQ(inSkins.variable("CURRENTFILE"), "a.ini");
    const auto skin = base + "/loose/Top/Sub/a.ini";
    EXPECT_EQ(foldersOf(skin).root, base + "/loose/Top/");
    EXPECT_EQ(foldersOf(skin).variable("@"), base + "/loose/Top/@resources/");
    EXPECT_EQ(PackFolders::find(skin, base + "/loose/Top/Sub", std::nullopt, "/n").root, base + "/loose/Top/Sub/");
    EXPECT_EQ(PackFolders::find(skin, std::nullopt, base + "/loose", "/n").config, "loose\\Top\\Sub");
    EXPECT_TRUE(foldersOf(skin).isInPack(base + "/loose/Top/new/file.txt"));
    EXPECT_FALSE(foldersOf(skin).isInPack(base + "/loose/Top/../other.txt"));
    std::filesystem::create_directory_symlink("/etc", base + "/loose/Top/link");
    EXPECT_FALSE(foldersOf(skin).isInPack(base + "/loose/Top/link/passwd"));
}

TEST(PackReport, findsWhatAPackWantsWithoutRunningIt) {
    const auto skin
        = Pack()
              .file("skin.ini",
                  "[Variables]\nHost=api.example.org\n[S]\nMeasure=Script\nScriptFile=#@#go.lua\n"
                  "[W]\nMeasure=Plugin\nPlugin=Plugins\\WebParser.dll\nURL=https://User@#Host#:8080/"
                  "x\n[C]\nMeasure=WebParser\n"
                  "URL=[W]\n[F]\nMeasure=WebParser\nURL=file:///etc/hosts\n[R]\nMeasure=Plugin\nPlugin=RunCommand\n"
                  "Program=uname\nParameter=-a\n[Z]\nMeasure=Plugin\nPlugin=RunCommand\nProgram=cmd.exe\n"
                  "[M]\nMeter=Button\nLeftMouseUpAction=[!Refresh][\"C:\\Tool\\a.exe\" -x][firefox "
                  "--new][https://a.org][M:X]\n"
                  "ButtonCommand=\"notes.txt\"\n")
              .read();
    const auto wants = findWants(skin);
    EXPECT_THAT(wants.scripts, ElementsAre("/s/Skins/Pack/@Resources/go.lua"));
    EXPECT_THAT(wants.web, ElementsAre("api.example.org"));
    EXPECT_THAT(wants.programs, ElementsAre("firefox", "uname -a"));
    EXPECT_THAT(wants.files, ElementsAre("/etc/hosts"));
    EXPECT_THAT(
        thingsBeyondBase(skin), ElementsAre("scripts", "web addresses", "output of programs", "buttons with states"));
    const auto report = reportOf(skin);
    ASSERT_EQ(report.findings.size(), 1U);
    EXPECT_EQ(report.findings[0].category, "Foreign Program");
}

} // namespace
} // namespace Ostrel
