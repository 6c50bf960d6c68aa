#include "Meters/Full/FullMeterFixture.h"
#include "Support/GoldenImage.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Ostrel {

namespace {

constexpr double Width = 420;
constexpr double Height = 330;

/// Pictures in every way in which they are stretched, cut, turned and colored.
class PictureSheet : public testing::Test {
protected:
    PictureSheet() {
        QImage picture(48, 32, QImage::Format_ARGB32);
        for (int y = 0; y < 32; ++y)
            for (int x = 0; x < 48; ++x)
                picture.setPixelColor(x, y,
                    (x / 8 + y / 8) % 2 ? QColor(40 + x * 4, 60 + y * 5, 200 - x * 3) : QColor(250, 200, 90, 140));
        picture.save(QString::fromStdString(path("picture")));
        QImage mask(40, 40, QImage::Format_ARGB32);
        mask.fill(Qt::transparent);
        QPainter round(&mask);
        round.setRenderHint(QPainter::Antialiasing);
        round.setBrush(QColor(0, 0, 0, 200));
        round.drawEllipse(1, 1, 38, 38);
        round.end();
        mask.save(QString::fromStdString(path("mask")));
        QImage hand(60, 8, QImage::Format_ARGB32);
        hand.fill(QColor(200, 30, 30));
        hand.save(QString::fromStdString(path("hand")));

        addStretched();
        addComputed();
        addTurning();
    }

    std::string path(const char* name) const { return folder_.path() + '/' + name + ".png"; }

    void add(const char* type, double x, double y, const OptionPairs& pairs, std::vector<MeasureValue> values = {}) {
        Options options = optionsOf(pairs);
        options.set("ImagePath", folder_.path());
        auto meter = workshop_.make(type, std::move(options));
        meter->update(values);
        const Size box = meter->boxSize();
        const Point offset = meter->anchorOffset(box);
        meter->setFrame({x - offset.x, y - offset.y, box.width, box.height});
        meters_.push_back(std::move(meter));
    }

    void addStretched() {
        add("Image", 10, 10, {{"ImageName", "picture"}, {"SolidColor", "0,0,0,60"}, {"Padding", "3,3,3,3"}});
        add("Image", 80, 10, {{"ImageName", "picture"}, {"W", "70"}, {"H", "50"}});
        add("Image", 160, 10, {{"ImageName", "picture"}, {"W", "21"}, {"H", "50"}, {"SolidColor", "0,0,0,60"}});
        add("Image", 190, 10, {{"ImageName", "picture"}, {"W", "60"}, {"SolidColor", "0,0,0,60"}});
        add("Image", 260, 10,
            {{"ImageName", "picture"}, {"W", "60"}, {"H", "60"}, {"PreserveAspectRatio", "1"},
                {"SolidColor", "0,0,0,60"}});
        add("Image", 330, 10, {{"ImageName", "picture"}, {"W", "60"}, {"H", "60"}, {"PreserveAspectRatio", "(1+1)"}});
        add("Image", 10, 80, {{"ImageName", "picture"}, {"W", "110"}, {"H", "50"}, {"Tile", "1"}});
        add("Image", 130, 80, {{"ImageName", "picture"}, {"W", "110"}, {"H", "60"}, {"ScaleMargins", "8,8,16,8"}});
        add("Image", 250, 80, {{"ImageName", "picture"}, {"MaskImageName", "mask"}, {"MaskImagePath", "/none"}});
        add("Image", 330, 80, {{"ImageName", "picture"}, {"MaskImageName", path("mask").c_str()}, {"W", "70"}});
    }

    void addComputed() {
        double x = 10;
        for (const OptionPairs& options : {OptionPairs{{"ImageCrop", "-30,-20,40,30,3"}}, {{"ImageFlip", "Both"}},
                 {{"Greyscale", "1"}}, {{"ImageTint", "120,255,120,160"}}, {{"ImageAlpha", "70"}},
                 {{"ColorMatrix1", "0;0;1;0;0"}, {"ColorMatrix5", "0.2;0;0;0;1"}}}) {
            Options all = optionsOf(options);
            all.set("ImageName", path("picture"));
            auto meter = workshop_.make("Image", std::move(all));
            meter->update({});
            meter->setFrame({x, 160, meter->boxSize().width, meter->boxSize().height});
            meters_.push_back(std::move(meter));
            x += 66;
        }
    }

    void addTurning() {
        add("Image", 10, 210, {{"ImageName", "picture"}, {"ImageRotate", "30"}, {"SolidColor", "0,0,0,60"}});
        add("Image", 90, 210,
            {{"ImageName", "picture"}, {"ImageRotate", "-45"}, {"W", "90"}, {"H", "50"}, {"SolidColor", "0,0,0,60"}});
        add("Image", 200, 210,
            {{"ImageName", "picture"}, {"TransformationMatrix", "0.9;0.3;-0.2;1;66;-70"}, {"AntiAlias", "1"}});
        double x = 300;
        for (const double value : {0.0, 25.0, 60.0}) {
            add("Rotator", x, 230,
                {{"ImageName", "hand"}, {"OffsetX", "6"}, {"OffsetY", "4"}, {"StartAngle", "(3*PI/2)"}, {"W", "30"},
                    {"H", "30"}, {"SolidColor", "0,0,0,40"}},
                {numberValue(value)});
            x += 45;
        }
        add("Rotator", 60, 300, {{"ImageName", "hand"}, {"RotationAngle", "(-PI)"}, {"ValueReminder", "60"}},
            {numberValue(130)});
        add("Bitmap", 160, 290,
            {{"BitmapImage", "picture"}, {"BitmapFrames", "6"}, {"BitmapExtend", "1"}, {"BitmapSeparation", "2"},
                {"BitmapAlign", "Center"}},
            {numberValue(1234)});
        add("Button", 230, 290, {{"ButtonImage", "picture"}});
    }

    QImage painted(double scale, const QRect& clip) {
        QImage canvas(
            static_cast<int>(Width * scale), static_cast<int>(Height * scale), QImage::Format_ARGB32_Premultiplied);
        canvas.fill(QColor(225, 230, 235));
        QPainter painter(&canvas);
        painter.setClipRect(clip);
        painter.scale(scale, scale);
        for (const auto& meter : meters_)
            meter->draw(painter, {});
        return canvas;
    }
    QImage painted(double scale) { return painted(scale, QRect(0, 0, 10'000, 10'000)); }

    TemporaryFolder folder_;
    FullMeterWorkshop workshop_;
    std::vector<std::shared_ptr<FullMeter>> meters_;
};

TEST_F(PictureSheet, looksAsItDid) {
    EXPECT_TRUE(matchesGolden(painted(1), "OstrelEngine/Meters/Goldens/full-pictures.png", 12));
}

TEST_F(PictureSheet, drawsPartsAsTheWholeAndInItsPaintRect) {
    for (const double scale : {1.0, 1.5}) {
        const QImage whole = painted(scale);
        for (const QRect part : {QRect(33, 17, 211, 190), QRect(230, 155, 190, 160), QRect(5, 200, 300, 111)})
            EXPECT_EQ(painted(scale, part).copy(part), whole.copy(part)) << part.x() << ' ' << scale;
    }
    for (std::size_t i = 0; i < meters_.size(); ++i) {
        const Rect rect = meters_[i]->paintRect({});
        const QRect ink = inkOf(drawn(*meters_[i], {}, Width, Height));
        EXPECT_TRUE(ink.isEmpty() || QRectF(rect.x, rect.y, rect.width, rect.height).contains(ink)) << i;
    }
}

} // namespace

} // namespace Ostrel
