#include "OstrelEngine/Meters/Text/FontLibrary.h"
#include "OstrelEngine/Meters/Text/FontLookup.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace Ostrel {

namespace {

std::string fileOf(const FontLookup::Request& request, std::string_view interfaceFamily = "DejaVu Sans") {
    const auto file = FontLookup::face(request, interfaceFamily);
    return file ? std::filesystem::path(file->path).filename().string() : "";
}

} // namespace

TEST(FontLookup, takesTheExactFaceThenTheFamilyThenItsMetricTwin) {
    const std::pair<const char*, const char*> rows[] = {
        {"Inter Semi Bold", "Inter-SemiBold.otf"},
        {"inter-bolditalic", "Inter-BoldItalic.otf"},
        {"INTER", "Inter-Regular.otf"},
        {"DejaVu Sans", "DejaVuSans.ttf"},
        {"Arial", "LiberationSans-Regular.ttf"},
        {"Times New Roman", "LiberationSerif-Regular.ttf"},
        {"courier new", "LiberationMono-Regular.ttf"},
        {"No Such Font", "DejaVuSans.ttf"},
        {"", "DejaVuSans.ttf"},
    };
    for (const auto& [name, file] : rows)
        EXPECT_EQ(fileOf({name}), file) << name;
}

TEST(FontLookup, weighsTheInterfaceFontOnly) {
    EXPECT_EQ(fileOf({"", 600}, "Inter"), "Inter-SemiBold.otf");
    EXPECT_EQ(fileOf({"No Such Font", 100}, "Inter"), "Inter-Thin.otf");
    EXPECT_EQ(fileOf({"Inter", 900}), "Inter-Regular.otf");
    EXPECT_EQ(fileOf({"", 400}, "no such family"), fileOf({"", 400}, "sans-serif"));
}

TEST(FontLookup, takesTraitsThatTheFamilyHas) {
    EXPECT_EQ(fileOf({"Inter", 400, true, false}), "Inter-Bold.otf");
    EXPECT_EQ(fileOf({"Inter Black", 400, true, true}), "Inter-BlackItalic.otf") << "it is bold already";
    EXPECT_EQ(fileOf({"Inter Light", 400, false, true}), "Inter-LightItalic.otf");
    EXPECT_EQ(fileOf({"Inter Medium Italic", 400, true, false}), "Inter-BoldItalic.otf") << "italic stays";
    EXPECT_EQ(fileOf({"Arial", 400, true, false}), "LiberationSans-Bold.ttf");
    EXPECT_EQ(fileOf({"DejaVu Math TeX Gyre", 400, true, true}), fileOf({"DejaVu Math TeX Gyre"}))
        << "no face is made bold by force";
}

TEST(FontLibrary, opensAFaceOnce) {
    auto& library = FontLibrary::shared();
    const auto typeface = library.typeface({"Inter"});
    ASSERT_TRUE(typeface);
    EXPECT_EQ(library.typeface({"Inter-Regular"}), typeface);
    EXPECT_EQ(library.fallback(U"\U000F1234", {"Inter"}, false), nullptr) << "a character of no font";
    EXPECT_EQ(Typeface::open({"/dev/null", 0, true}, nullptr), nullptr);
    EXPECT_EQ(Typeface::open({"/no/such/file", 0, false}, nullptr), nullptr);
}

} // namespace Ostrel
