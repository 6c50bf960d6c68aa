#include "OstrelEngine/Meters/StringMeter.h"
#include "OstrelEngine/Meters/Text/FontLookup.h"
#include "OstrelEngine/Meters/Text/TextLayout.h"

#include "Meters/MeterFixture.h"
#include "Support/TemporaryFolder.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <QPainterPath>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>

namespace Ostrel {

namespace {

/// Pieces in which text engines have stumbled: directions, joiners, marks, pairs, halves of characters, breaks.
constexpr const char* Pieces[] = {"a", " ", "-", "\n", "\xD7\x90", "\xD8\xA8", "\xE2\x80\xAE", "\xE2\x80\x8F",
    "\xE2\x81\xA6", "\xE2\x80\x8D", "\xEF\xB8\x8F", "\xCC\x81", "\xE0\xA4\x95\xE0\xA5\x8D", "\xE4\xB8\xAD",
    "\xF0\x9F\x91\xA8", "\xF0\x9F\x87\xA9", "\xF0\x9F\x8F\xBD", "\xED\xA0\x80", "\xFF", "\xC2\xAD", "\xE2\x80\xA8",
    "\xF4\x8F\xBF\xBF", "fi", "1", "\t", "\xE0\xB8\x81", "\xE1\x84\x80\xE1\x85\xA1", "\xEF\xBF\xBE"};

std::string bytesOf(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// All that is ever asked of a face.
void use(const std::shared_ptr<Typeface>& typeface) {
    TextSetting setting;
    setting.font.typeface = typeface;
    const auto line = TextShaper::shape(u"Hamburgefonstiv 12:34 fi AV", setting, TextDirection::leftToRight);
    QPainterPath path;
    for (const auto& glyph : line.glyphs) {
        typeface->bitmaps(20, true).bitmap(glyph.glyph, 1);
        typeface->addOutline(path, glyph.glyph, {}, 20);
    }
}

} // namespace

TEST(HostileText, isSetAndDrawnWhateverItIs) {
    std::mt19937 random(11);
    const auto below = [&](std::size_t limit) { return random() % limit; };
    for (int round = 0; round < 150; ++round) {
        std::string text;
        for (auto i = below(40); i > 0; --i)
            text += Pieces[below(std::size(Pieces))];
        Options options = optionsOf({{"FontFace", below(2) ? "Inter" : "DejaVu Sans Mono"},
            {"ClipString", below(2) ? "1" : "0"}, {"StringEffect", below(2) ? "Border" : "Shadow"},
            {"W", below(2) ? "37" : "0"}, {"InlineSetting", below(2) ? "CharacterSpacing|-9" : "Underline"}});
        options.set("Text", text);
        StringMeter meter(meterOfType("String"), options);
        meter.setFrame({20, 0, 37, static_cast<double>(below(60))});
        const QRect ink = inkOf(drawn(meter, {}, 90, 60));
        const Rect allowed = meter.paintRect({});
        EXPECT_TRUE(ink.isEmpty() || (allowed.minX() <= ink.left() && allowed.maxX() >= ink.right())) << text;
    }
}

TEST(HostileText, survivesBrokenFonts) {
    const TemporaryFolder folder;
    FT_Library opened = nullptr;
    FT_Init_FreeType(&opened);
    const std::shared_ptr<FT_LibraryRec_> library(opened, [](FT_Library l) { FT_Done_FreeType(l); });
    std::mt19937 random(5);
    for (const auto* name : {"Inter", "DejaVu Sans Mono"}) {
        const auto file = FontLookup::face({name}, "");
        ASSERT_TRUE(file);
        const auto intact = bytesOf(file->path);
        for (int round = 0; round < 40; ++round) {
            std::string broken = intact.substr(0, round % 4 == 0 ? random() % intact.size() : intact.size());
            for (int i = 0; i < 30; ++i)
                // The tables' directory and first tables are where most harm is done.
                broken[random() % (i % 2 ? broken.size() : std::min<std::size_t>(broken.size(), 4096))]
                    = static_cast<char>(random());
            const auto typeface = Typeface::open({folder.write("broken.ttf", broken), 0, true}, library);
            if (typeface)
                use(typeface);
        }
    }
}

} // namespace Ostrel
