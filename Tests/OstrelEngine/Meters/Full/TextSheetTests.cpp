#include "Meters/Full/FullMeterFixture.h"
#include "Support/GoldenImage.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Ostrel {

namespace {

constexpr double Width = 520;
constexpr double Height = 560;

/// Every option of texts that shows, in fonts that are pinned.
class TextSheet : public testing::Test {
protected:
    void add(double x, double y, Options options, std::vector<MeasureValue> values = {}) {
        if (!options.contains("FontFace"))
            options.set("FontFace", "DejaVu Sans");
        options.set("X", std::to_string(x));
        options.set("Y", std::to_string(y));
        auto meter = workshop_.make("String", std::move(options));
        meter->update(values);
        const Size box = meter->boxSize();
        const Point offset = meter->anchorOffset(box);
        meter->setFrame({x - offset.x, y - offset.y, box.width, box.height});
        meters_.push_back(std::move(meter));
    }
    void add(double x, double y, const OptionPairs& options, std::vector<MeasureValue> values = {}) {
        add(x, y, optionsOf(options), std::move(values));
    }

    void addAlignments() {
        double x = 60;
        for (const char* align : {"Left", "CenterTop", "Right", "LeftCenter", "CenterCenter", "RightBottom"}) {
            add(x, 20,
                {{"Text", "Ag\nlonger"}, {"StringAlign", align}, {"FontSize", "9"}, {"SolidColor", "0,90,160,120"}});
            add(x, 80,
                {{"Text", "Ag"}, {"StringAlign", align}, {"W", "60"}, {"H", "34"}, {"FontColor", "120,0,0"},
                    {"SolidColor", "0,0,0,40"}, {"Padding", "4,2,4,2"}});
            x += 80;
        }
    }

    void addClipping() {
        const char* text = "Several words and then Donaudampfschiffahrt";
        add(10, 140, {{"Text", text}, {"W", "100"}, {"SolidColor", "255,220,0,90"}});
        add(10, 165, {{"Text", text}, {"W", "100"}, {"ClipString", "1"}, {"SolidColor", "255,220,0,90"}});
        add(10, 190, {{"Text", text}, {"W", "100"}, {"H", "40"}, {"ClipString", "1"}, {"SolidColor", "255,220,0,90"}});
        add(140, 165, {{"Text", text}, {"W", "100"}, {"ClipString", "2"}, {"SolidColor", "0,200,80,70"}});
        add(260, 165,
            {{"Text", text}, {"ClipStringW", "110"}, {"ClipStringH", "36"}, {"ClipString", "2"},
                {"SolidColor", "0,200,80,70"}});
        add(390, 165, {{"Text", "short"}, {"ClipStringW", "110"}, {"ClipString", "2"}, {"SolidColor", "0,200,80,70"}});
        add(500, 200,
            {{"Text", text}, {"W", "90"}, {"H", "60"}, {"ClipString", "2"}, {"StringAlign", "Right"},
                {"SolidColor", "0,200,80,70"}});
    }

    void addEffects() {
        add(10, 260,
            {{"Text", "Shadow"}, {"FontSize", "18"}, {"StringEffect", "Shadow"}, {"FontColor", "255,255,255"}});
        add(120, 260,
            {{"Text", "Border"}, {"FontSize", "18"}, {"StringEffect", "Border"}, {"FontColor", "255,255,255"},
                {"FontEffectColor", "200,0,0"}});
        add(230, 260, {{"Text", "hard"}, {"FontSize", "18"}, {"AntiAlias", "0"}});
        add(320, 265, {{"Text", "turned"}, {"FontSize", "14"}, {"Angle", "(Rad(25))"}, {"SolidColor", "0,0,0,30"}});
        add(480, 270,
            {{"Text", "about right"}, {"FontSize", "11"}, {"Angle", "-0.4"}, {"StringAlign", "Right"},
                {"StringEffect", "Border"}, {"FontEffectColor", "255,255,255"}, {"InlineSetting", "Underline"}});
        add(10, 300, {{"Text", "Bold %1"}, {"StringStyle", "BoldItalic"}}, {textValue("italic")});
        add(120, 300, {{"Text", "made bold"}, {"FontFace", "Z003"}, {"FontSize", "14"}, {"FontWeight", "800"}});
        add(230, 300, {{"Text", "thin"}, {"FontFace", "Inter"}, {"FontWeight", "200"}, {"FontSize", "14"}});
        add(300, 300, {{"Text", "Inter Black"}, {"FontFace", "Inter Black"}, {"FontSize", "14"}});
        add(420, 300, {{"Text", "leaning"}, {"FontFace", "D050000L"}, {"StringStyle", "Italic"}});
    }

    void addInlineSettings() {
        add(10, 340,
            {{"Text", "Red, big, AVATAR and underlined"}, {"InlineSetting", "Color | FF0000"},
                {"InlinePattern", "Red|VAT"}, {"InlineSetting2", "Size | 18"}, {"InlinePattern2", "big"},
                {"InlineSetting3", "Underline"}, {"InlinePattern3", "(under).*"}, {"InlineSetting4", "Strikethrough"},
                {"InlinePattern4", "lined"}});
        add(10, 375,
            {{"Text", "Gradients over each word"}, {"FontSize", "16"},
                {"InlineSetting", "GradientColor | 180 | 255,0,0 ; 0.0 | 0,0,255 ; 1.0"}, {"InlinePattern", "\\w+"}});
        add(300, 375,
            {{"Text", "upright and in light"}, {"FontSize", "16"},
                {"InlineSetting", "GradientColor1 | 270 | 0,0,0 ; 0 | 255,160,0 ; 1"}});
        add(10, 410,
            {{"Text", "spaced out, least 16px"}, {"InlineSetting", "CharacterSpacing | 2 | 3 | *"},
                {"InlinePattern", "spaced out"}, {"InlineSetting2", "CharacterSpacing | * | * | 16"},
                {"InlinePattern2", "least"}});
        add(270, 410,
            {{"Text", "Shadow soft sharp"}, {"FontSize", "13"}, {"InlineSetting", "Shadow | 2 | 2 | 3 | 0,0,200,200"},
                {"InlinePattern", "soft"}, {"InlineSetting2", "Shadow | -2 | 1 | 0 | 200,0,0"},
                {"InlinePattern2", "sharp"}});
        add(10, 440,
            {{"Text", "Face weight oblique 0123 10/16"}, {"FontFace", "Inter"},
                {"InlineSetting", "Face | DejaVu Serif"}, {"InlinePattern", "Face"}, {"InlineSetting2", "Weight | 900"},
                {"InlinePattern2", "weight"}, {"InlineSetting3", "Oblique"}, {"InlinePattern3", "oblique"},
                {"InlineSetting4", "Typography | frac"}, {"InlinePattern4", "10/16"}, {"InlineSetting5", "None"},
                {"InlineSetting6", "Typography | zero | 1"}, {"InlinePattern6", "0123"}});
        add(10, 470,
            {{"Text", "condensed and CASES of letters. here it is"}, {"InlineSetting", "Stretch | 3"},
                {"InlinePattern", "condensed"}, {"InlineSetting2", "Case | Sentence"},
                {"InlinePattern2", "(CASES.*)"}});
        add(10, 500,
            {{"Text", "abc \xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D 12 \xD8\xB3\xD9\x84\xD8\xA7\xD9\x85 def"},
                {"FontSize", "14"}, {"InlineSetting", "Size | 20"}, {"InlinePattern", "\xD7\x9C\xD7\x95"},
                {"InlineSetting2", "Color | 0,130,0"}, {"InlinePattern2", "\xD7\x95\xD7\x9D"}});
        add(270, 500,
            {{"Text", "over each other"}, {"InlineSetting", "Color | 255,0,0"}, {"InlinePattern", "over each"},
                {"InlineSetting2", "Color | 0,0,255"}, {"InlinePattern2", "each other"},
                {"InlineSetting3", "Weight|700"}, {"InlinePattern3", "(o).*(o)"}, {"FontSize", "14"}});
    }

    QImage painted(double scale, const QRect& clip) {
        QImage canvas(
            static_cast<int>(Width * scale), static_cast<int>(Height * scale), QImage::Format_ARGB32_Premultiplied);
        canvas.fill(QColor(200, 205, 210));
        QPainter painter(&canvas);
        painter.setClipRect(clip);
        painter.scale(scale, scale);
        for (const auto& meter : meters_)
            meter->draw(painter, {});
        return canvas;
    }
    QImage painted(double scale) { return painted(scale, QRect(0, 0, 10000, 10000)); }

    FullMeterWorkshop workshop_;
    std::vector<std::shared_ptr<FullMeter>> meters_;
};

TEST_F(TextSheet, looksAsItDid) {
    addAlignments();
    addClipping();
    addEffects();
    addInlineSettings();
    EXPECT_TRUE(matchesGolden(painted(1), "OstrelEngine/Meters/Goldens/full-text.png", 24));
}

TEST_F(TextSheet, drawsPartsAsTheWholeAndInItsPaintRect) {
    addAlignments();
    addClipping();
    addEffects();
    addInlineSettings();
    for (const double scale : {1.0, 1.5}) {
        const QImage whole = painted(scale);
        for (const QRect part : {QRect(33, 17, 211, 190), QRect(260, 255, 200, 260), QRect(5, 330, 300, 111)})
            EXPECT_EQ(painted(scale, part).copy(part), whole.copy(part)) << part.x() << ' ' << scale;
    }
    for (const auto& meter : meters_) {
        QImage canvas(static_cast<int>(Width), static_cast<int>(Height), QImage::Format_ARGB32_Premultiplied);
        canvas.fill(Qt::transparent);
        {
            QPainter painter(&canvas);
            meter->draw(painter, {});
        }
        const Rect rect = meter->paintRect({});
        const QRect ink = inkOf(canvas);
        EXPECT_TRUE(QRectF(rect.x, rect.y, rect.width, rect.height).contains(ink))
            << meter->displayedText({}).value_or("");
    }
}

} // namespace

} // namespace Ostrel
