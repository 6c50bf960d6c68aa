#include "Meters/MeterFixture.h"
#include "Support/GoldenImage.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace Ostrel {

namespace {

constexpr double Width = 240;
constexpr double Height = 180;

/// Meters of every kind at places that are no whole pixels, with values that change.
class MeterPaintTest : public testing::Test {
protected:
    MeterPaintTest() {
        QImage picture(40, 30, QImage::Format_ARGB32);
        for (int y = 0; y < 30; ++y)
            for (int x = 0; x < 40; ++x)
                picture.setPixelColor(x, y, QColor(x * 6, y * 8, 90, 255 - x * 3));
        path_ = folder_.path() + "/picture.png";
        picture.save(QString::fromStdString(path_));
        const char* image = path_.c_str();
        add("String", {{"Text", "Value %1 AVATAR gj"}, {"FontFace", "DejaVu Sans"}}, {7.3, 3.6, 0, 0});
        add("String",
            {{"Text", "%1"}, {"FontSize", "30.5"}, {"StringEffect", "Shadow"}, {"FontFace", "DejaVu Serif"},
                {"StringAlign", "Right"}, {"FontColor", "255,200,0,180"}},
            {230.4, 20.2, 0, 0});
        add("String",
            {{"Text", "%1f"}, {"FontSize", "40"}, {"StringEffect", "Border"}, {"FontFace", "DejaVu Serif"},
                {"StringAlign", "Center"}},
            {60.7, 40, 0, 0});
        add("String",
            {{"Text", "wrapped and centered %1"}, {"W", "70"}, {"SolidColor", "0,0,0,99"}, {"FontFace", "Inter"},
                {"StringAlign", "Center"}, {"InlineSetting", "Underline"}, {"InlineSetting2", "Shadow|-3|2|5|0,0,255"}},
            {190, 60, 70, 0});
        add("String",
            {{"Text", "%1 ends somewhere %1"}, {"W", "80"}, {"ClipString", "1"}, {"AntiAlias", "0"},
                {"FontFace", "DejaVu Sans Mono"}},
            {5.5, 100.5, 80, 0});
        add("String", {{"Text", "%1"}, {"FontSize", "350"}, {"FontColor", "0,90,0,60"}, {"FontFace", "DejaVu Sans"}},
            {-30, -60, 0, 0});
        add("Bar", {{"SolidColor", "40,40,40,120"}}, {8.25, 120.5, 90.5, 6.25});
        add("Bar", {{"BarOrientation", "Vertical"}, {"TransformationMatrix", "1;0.2;-0.1;1;14.5;3"}}, {110, 80, 9, 40});
        add("Shape",
            {{"Shape", "Rectangle 1.5,1,50,20,6 | Fill Color 90,90,255,120 | Stroke Color 255,255,255 | StrokeWidth 3"},
                {"Shape2", "Ellipse 70,10,12.5,9 | Fill Color 255,0,0"},
                {"Shape3", "Rectangle 90,2,12.4,14.6|Stroke Color 0,255,0,99"}},
            {6.5, 132.4, 0, 0});
        add("Image", {{"ImageName", image}, {"ImageTint", "255,0,0,60"}}, {120.4, 130.7, 33.3, 21.9});
        add("Image", {{"ImageName", image}, {"PreserveAspectRatio", "2"}}, {160, 120, 70.2, 70.2});
        add("Roundline", {}, {212.5, 4.25, 20, 14.5});
    }

    void add(const char* type, const OptionPairs& pairs, MeterFrame frame) {
        meters_.push_back(MeterFactory::create(meterOfType(type), optionsOf(pairs), "/skin.ini", platform_.platform));
        meters_.back()->setFrame(frame);
    }

    void paint(QImage& canvas, double scale, const QRect& clip, MeasureValues values) {
        QPainter painter(&canvas);
        painter.setClipRect(clip);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(clip, QColor(30, 60, 90, 200));
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.scale(scale, scale);
        for (const auto& meter : meters_)
            meter->draw(painter, values);
    }

    QImage painted(double scale, MeasureValues values) {
        QImage canvas = transparentCanvas(Width, Height, scale);
        paint(canvas, scale, canvas.rect(), values);
        return canvas;
    }

    TemporaryFolder folder_;
    FakePlatform platform_;
    std::string path_;
    std::vector<std::shared_ptr<MeterRenderer>> meters_;
};

QRect pixelsOf(const Rect& rect, double scale) {
    return QRectF(rect.minX() * scale, rect.minY() * scale, (rect.maxX() - rect.minX()) * scale,
        (rect.maxY() - rect.minY()) * scale)
        .toAlignedRect();
}

const std::vector<std::vector<MeasureValue>> Publications
    = {{numberValue(7)}, {numberValue(64.25)}, {textValue("fj\xC3\x85")}, {numberValue(100)}};

} // namespace

TEST_F(MeterPaintTest, givesTheSamePixelsInPiecesAsAtOnce) {
    std::mt19937 random(7);
    for (const double scale : {1.0, 1.25, 2.0}) {
        const QImage whole = painted(scale, Publications[1]);
        QImage pieces = painted(scale, Publications[0]);
        // What is not painted again shows the first values, so that nothing but the clips can repair it.
        for (int y = 0; y < pieces.height(); y += 61) {
            for (int x = 0; x < pieces.width();) {
                const int width = 1 + static_cast<int>(random() % 110);
                paint(pieces, scale, QRect(x, y, width, 61), Publications[1]);
                x += width;
            }
        }
        EXPECT_EQ(pieces, whole) << scale;
    }
}

TEST_F(MeterPaintTest, touchesNothingOutsideItsPaintRect) {
    for (const double scale : {1.0, 1.25, 2.0, 3.0}) {
        for (const auto& values : Publications) {
            for (std::size_t i = 0; i < meters_.size(); ++i) {
                const QRect ink = inkOf(drawn(*meters_[i], values, Width, Height, scale));
                const QRect allowed = pixelsOf(meters_[i]->paintRect(values), scale);
                EXPECT_TRUE(ink.isEmpty() || allowed.contains(ink))
                    << "item " << i << " at " << scale << ": " << ink.x() << ',' << ink.y() << ' ' << ink.width() << 'x'
                    << ink.height();
            }
        }
    }
}

TEST_F(MeterPaintTest, showsEveryChangeThatItReports) {
    for (std::size_t i = 0; i < meters_.size(); ++i) {
        QImage before;
        for (const auto& values : Publications) {
            const bool changed = meters_[i]->updateAppearance(values);
            const QImage now = drawn(*meters_[i], values, Width, Height);
            EXPECT_TRUE(changed || before.isNull() || now == before) << "item " << i << " changed without a word";
            before = now;
        }
        EXPECT_FALSE(meters_[i]->updateAppearance(Publications.back())) << "item " << i;
    }
}

TEST_F(MeterPaintTest, looksAsItDid) {
    EXPECT_TRUE(matchesGolden(painted(1, Publications[1]), "OstrelEngine/Meters/Goldens/meters.png", 24));
    EXPECT_TRUE(matchesGolden(painted(2, Publications[1]), "OstrelEngine/Meters/Goldens/meters-2x.png", 24));
}

} // namespace Ostrel
