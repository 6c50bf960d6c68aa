#include "OstrelEngine/Meters/Text/FontRegistry.h"
#include "OstrelPlatform/FontRegistrar.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace Ostrel {

namespace {

struct RecordingRegistrar final : FontRegistrar {
    void registerFontFile(const std::string& path) override { files += path.substr(folder.size()) + ' '; }

    std::string folder;
    std::string files;
};

/// What a skin in `@Resources`' parent registers, as paths below it.
std::string registered(const TemporaryFolder& folder, const char* skin = "Suite/Skin.ini") {
    RecordingRegistrar registrar;
    registrar.folder = folder.path() + "/Suite/@Resources/";
    FontRegistry::registerResourceFontsIfNeeded(folder.path() + '/' + skin, registrar);
    return registrar.files;
}

} // namespace

TEST(FontRegistry, takesTheFontsFolderInAnyCase) {
    const TemporaryFolder folder;
    for (const auto* file : {"FONTS/b.TTF", "FONTS/sub/a.otf", "FONTS/.hidden.ttf", "FONTS/.git/c.ttf", "FONTS/a.woff",
             "loose.ttf", "fonts2/d.ttf"})
        folder.write(std::string("Suite/@Resources/") + file, "");
    EXPECT_EQ(registered(folder, "Suite/Deep/Down/Skin.ini"), "FONTS/b.TTF FONTS/sub/a.otf ");
    EXPECT_EQ(registered(folder), "") << "the second skin of a package costs nothing";
}

TEST(FontRegistry, takesLooseFontsWithoutAFontsFolder) {
    const TemporaryFolder folder;
    folder.write("Suite/@Resources/a.ttc", "");
    folder.write("Suite/@Resources/x/b.dfont", "");
    EXPECT_EQ(registered(folder), "a.ttc x/b.dfont ");
    const TemporaryFolder empty;
    empty.write("Suite/@Resources/a.otf", "");
    empty.write("Suite/@Resources/Fonts/readme.txt", "");
    EXPECT_EQ(registered(empty), "") << "the fonts folder counts, though it has none";
}

TEST(FontRegistry, looksAgainForResourcesThatWereNotThere) {
    const TemporaryFolder folder;
    folder.write("Suite/Skin.ini", "");
    const auto revision = FontRegistry::revision();
    EXPECT_EQ(registered(folder), "");
    EXPECT_EQ(FontRegistry::revision(), revision);
    folder.write("Suite/@Resources/a.otf", "");
    EXPECT_EQ(registered(folder), "a.otf ");
    EXPECT_EQ(FontRegistry::revision(), revision + 1);
}

} // namespace Ostrel
