#include "Meters/Full/FullMeterFixture.h"
#include "OstrelEngine/Meters/Full/FullBackground.h"
#include "OstrelEngine/Meters/Full/PictureOptions.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <QImage>

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Ostrel {

namespace {

constexpr std::pair<char, QRgb> Letters[] = {
    {'r', 0xFFFF0000}, {'g', 0xFF00FF00}, {'b', 0xFF0000FF}, {'w', 0xFFFFFFFF}, {'k', 0xFF000000}, {'.', 0x00000000}};

/// "rg/b." is red and green above blue and nothing.
QImage pictureOf(std::string_view rows) {
    const auto width = static_cast<int>(std::min(rows.find('/'), rows.size()));
    const int height = static_cast<int>(std::count(rows.begin(), rows.end(), '/')) + 1;
    QImage picture(width, height, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (const auto& [letter, color] : Letters)
                if (rows[static_cast<std::size_t>(y * (width + 1) + x)] == letter)
                    picture.setPixel(x, y, color);
    return picture;
}

/// As above; other colors in hexadecimal.
std::string rowsOf(const QImage& picture) {
    std::string rows;
    for (int y = 0; y < picture.height(); ++y) {
        rows += y > 0 ? "/" : "";
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            const auto* known = std::find_if(
                std::begin(Letters), std::end(Letters), [&](const auto& letter) { return letter.second == pixel; });
            if (known != std::end(Letters))
                rows += known->first;
            else
                rows += '(' + QString::number(pixel, 16).toStdString() + ')';
        }
    }
    return rows;
}

class FullPictures : public testing::Test {
protected:
    std::string save(const char* name, const QImage& picture) {
        const auto path = folder_.path() + '/' + name;
        picture.save(QString::fromStdString(path), "PNG");
        return path;
    }
    std::string save(const char* name, std::string_view rows) { return save(name, pictureOf(rows)); }

    TemporaryFolder folder_;
    FullMeterWorkshop workshop_;
};

struct Computed {
    OptionPairs options;
    const char* from;
    const char* to;
};

TEST(PictureOptions, computeThePicture) {
    const Computed rows[] = {
        {{{"ImageCrop", "1,0,1,2"}}, "rg/bw", "g/w"},
        {{{"ImageCrop", "-1,-1,2,2,3"}}, "rg/bw", "w./.."},
        {{{"ImageCrop", "-1,0,1,(1+1),2"}}, "rgb/bwk", "b/k"},
        {{{"ImageCrop", "0,-1,2,1,4"}}, "rgb/bwk", "bw"},
        {{{"ImageCrop", "0,-1,1,1,5"}}, "rgb/bwk", "g"},
        {{{"ImageCrop", "0,0,-1,1"}}, "rg", "rg"},
        {{{"ImageCrop", "0,0,0,1"}}, "rg", ""},
        {{{"ImageCrop", "0,0,1000000000,1000000000"}}, "rg", ""},
        {{{"ImageCrop", "1,2,3"}}, "rg", "rg"},
        {{{"ImageFlip", "horizontal"}}, "rg/bw", "gr/wb"},
        {{{"ImageFlip", "Vertical"}}, "rg/bw", "bw/rg"},
        {{{"ImageFlip", "Both"}, {"ImageCrop", "0,0,2,1"}}, "rg/bw", "gr"},
        {{{"ImageRotate", "90"}}, "rg", "r/g"},
        {{{"ImageRotate", "-90"}}, "rg", "g/r"},
        {{{"ImageRotate", "(360*4+180)"}, {"ImageFlip", "Vertical"}}, "rg/bw", "gr/wb"},
        {{{"Greyscale", "1"}}, "rw.", "(ff545454)w."},
        {{{"Greyscale", "1"}, {"ImageTint", "0000FF"}}, "wk.", "bk."},
        {{{"ImageTint", "255,255,255,255"}}, "rgk.", "rgk."},
        {{{"ImageTint", "255,0,128"}}, "rgw.", "rk(ffff0080)."},
        {{{"ImageTint", "255,255,255,0"}}, "rg", ".."},
        {{{"ImageTint", "255,0,0,10"}, {"ImageAlpha", "255"}}, "w", "r"},
        {{{"ImageAlpha", "300"}, {"ColorMatrix1", "0;1;0;0;0"}, {"ImageTint", "0,0,0"}}, "rgb", "ggb"},
        {{{"ColorMatrix5", "1;0;0;0;0"}, {"ColorMatrix4", "0;0;0;1"}}, "gk", "(ffffff00)r"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(rowsOf(PictureOptions::parse(optionsOf(row.options)).applied(pictureOf(row.from))), row.to)
            << row.options.begin()->second;
    const auto prefixed = optionsOf({{"PrimaryImageTint", "255,0,0"}, {"PrimaryColorMatrix1", "0;1;0;0;0"}});
    EXPECT_EQ(rowsOf(PictureOptions::parse(prefixed, "Primary").applied(pictureOf("r"))), "g");
    EXPECT_EQ(PictureOptions::parse(prefixed), PictureOptions());
    const auto turned
        = PictureOptions::parse(optionsOf({{"ImageRotate", "45"}})).applied(QImage(100, 20, QImage::Format_RGB32));
    EXPECT_EQ(turned.size(), QSize(85, 85));
    EXPECT_TRUE(PictureOptions::parse(optionsOf({{"ImageRotate", "30"}}))
                    .applied(QImage(16'000, 3'900, QImage::Format_Indexed8))
                    .isNull());
}

struct Shown {
    OptionPairs options;
    std::vector<MeasureValue> values;
    const char* picture;
};

TEST_F(FullPictures, imagesFindTheirFileAndSize) {
    save("one.png", "rg/bw");
    save("two.jpg", "kkk");
    save("MASK.png", "w./ww");
    save("3.png", "g");
    const std::string folder = folder_.path();
    const char* path = folder.c_str();
    const Shown rows[] = {
        {{{"ImageName", "one"}, {"ImagePath", path}}, {}, "rg/bw"},
        {{{"ImageName", "ONE.PNG"}, {"Path", path}}, {}, "rg/bw"},
        {{{"ImageName", "none"}, {"ImagePath", path}, {"W", "1"}, {"H", "1"}, {"SolidColor", "255,0,0"}}, {}, "r"},
        {{{"ImageName", "none"}, {"ImagePath", path}}, {textValue("one")}, "rg/bw"},
        {{{"ImagePath", path}}, {numberValue(2.6)}, "g"},
        {{{"ImageName", "%2.jpg"}, {"ImagePath", path}}, {textValue("one"), textValue("two")}, "kkk"},
        {{{"ImageName", "one"}, {"ImagePath", path}, {"W", "3"}, {"H", "5"}, {"Tile", "1"}}, {}, "rgr/bwb/rgr/bwb/rgr"},
        {{{"ImageName", "one"}, {"ImagePath", path}, {"W", "4"}, {"H", "2"}, {"PreserveAspectRatio", "1"}}, {},
            ".rg./.bw."},
        {{{"ImageName", "one"}, {"ImagePath", path}, {"W", "4"}, {"H", "2"}, {"PreserveAspectRatio", "2"},
             {"ImageCrop", "0,0,1,1"}},
            {}, "rrrr/rrrr"},
        {{{"ImageName", "one"}, {"ImagePath", path}, {"MaskImagePath", path}, {"MaskImageName", "mask"}}, {}, "r./bw"},
        {{{"ImageName", "one"}, {"ImagePath", path}, {"MaskImagePath", path}, {"MaskImageName", "mask"},
             {"MaskImageFlip", "Horizontal"}},
            {}, ".g/bw"},
        {{{"ImageName", "one"}, {"ImagePath", path}, {"W", "4"}, {"H", "3"}, {"ScaleMargins", "1,1,0,0"},
             {"ImageFlip", "Vertical"}},
            {}, "bwww/rggg/rggg"},
    };
    for (const auto& row : rows) {
        const auto meter = workshop_.place("Image", row.options, row.values);
        const Size box = meter->boxSize();
        EXPECT_EQ(rowsOf(drawn(*meter, {}, box.width, box.height)), row.picture)
            << row.options.begin()->second << ' ' << row.options.size();
    }
    const auto wide = workshop_.place("Image", {{"ImageName", "two.jpg"}, {"ImagePath", path}, {"H", "4"}});
    EXPECT_EQ(wide->boxSize(), (Size{12, 4}));
    const auto huge = workshop_.place(
        "Image", {{"ImageName", "one"}, {"ImagePath", path}, {"W", "1000000000"}, {"H", "1e9"}, {"Tile", "1"}});
    EXPECT_EQ(drawn(*huge, {}, 10, 2).pixel(8, 0), 0xFFFF0000);
}

TEST_F(FullPictures, areReadAgainOnlyWhenTheyMayHaveChanged) {
    const auto path = save("cover.png", "r");
    const auto fixed = workshop_.place("Image", {{"ImageName", path.c_str()}});
    const auto dynamic = workshop_.place("Image", {{"ImageName", path.c_str()}, {"DynamicVariables", "1"}});
    const auto pixelOf = [](FullMeter& meter) {
        FullMeterWorkshop::update(meter, {});
        return rowsOf(drawn(meter, {}, 1, 1));
    };
    EXPECT_EQ(pixelOf(*dynamic), "r");
    dynamic->updateAppearance({});
    FullMeterWorkshop::update(*dynamic, {});
    EXPECT_FALSE(dynamic->updateAppearance({}));
    save("cover.png", "gb");
    EXPECT_EQ(pixelOf(*fixed), "r");
    EXPECT_EQ(pixelOf(*dynamic), "g");
    EXPECT_TRUE(dynamic->updateAppearance({}));
    std::filesystem::remove(path);
    EXPECT_EQ(pixelOf(*dynamic), ".");
    save("cover.png", "b");
    EXPECT_EQ(pixelOf(*dynamic), "b");
    fixed->setOption("ImageTint", "0,0,0");
    EXPECT_EQ(pixelOf(*fixed), "k");
}

struct Frames {
    OptionPairs options;
    double value;
    const char* picture;
};

TEST_F(FullPictures, bitmapsShowTheFrameOfTheirValue) {
    const auto path = save("frames.png", "rgbwk");
    const char* image = path.c_str();
    const Frames rows[] = {
        {{{"BitmapFrames", "5"}}, 19.9, "r"},
        {{{"BitmapFrames", "5"}}, 20, "g"},
        {{{"BitmapFrames", "5"}}, 100, "k"},
        {{{"BitmapFrames", "5"}, {"BitmapZeroFrame", "1"}}, 20, "g"},
        {{{"BitmapFrames", "5"}, {"BitmapZeroFrame", "1"}}, 100, "k"},
        {{{"BitmapFrames", "5"}, {"ImageCrop", "0,0,1,1"}, {"ImageRotate", "90"}}, 50, "b"},
        {{{"BitmapFrames", "1000000000"}}, 50, "."},
        {{{"BitmapFrames", "6"}}, 50, "."},
        {{{"BitmapFrames", "0"}}, 50, "rgbwk"},
        {{{"BitmapFrames", "5"}, {"BitmapTransitionFrames", "1"}}, 50, "b"},
        {{{"BitmapFrames", "5"}, {"BitmapExtend", "1"}}, 38.4, "gbw"},
        {{{"BitmapFrames", "5"}, {"BitmapExtend", "1"}, {"BitmapDigits", "2"}}, -38, "bw"},
        {{{"BitmapFrames", "5"}, {"BitmapExtend", "1"}, {"BitmapDigits", "4"}, {"BitmapSeparation", "1"}}, 3,
            "r.r.r.w"},
        {{{"BitmapFrames", "5"}, {"BitmapExtend", "1"}, {"BitmapSeparation", "-1"}}, 38, "w"},
        {{{"BitmapFrames", "1"}, {"BitmapExtend", "1"}, {"BitmapDigits", "9"}}, 38, "rgbwk"},
    };
    for (const auto& row : rows) {
        Options options = optionsOf(row.options);
        options.set("BitmapImage", image);
        const auto meter = workshop_.make("Bitmap", options);
        FullMeterWorkshop::update(*meter, {numberValue(row.value)});
        const Size box = meter->boxSize();
        EXPECT_EQ(rowsOf(drawn(*meter, {}, std::max(1.0, box.width), std::max(1.0, box.height))), row.picture)
            << row.options.begin()->second << ' ' << row.options.size() << ' ' << row.value;
    }
}

TEST_F(FullPictures, bitmapsPlayTheirTransition) {
    const auto path = save("frames.png", "rgbwk.");
    const auto meter = workshop_.place("Bitmap",
        {{"BitmapImage", path.c_str()}, {"BitmapFrames", "6"}, {"BitmapTransitionFrames", "2"},
            {"BitmapZeroFrame", "1"}, {"BitmapAlign", "Right"}},
        {numberValue(0)});
    EXPECT_EQ(meter->anchorOffset(meter->boxSize()), (Point{1, 0}));
    const auto shown = [&] { return rowsOf(drawn(*meter, {}, 1, 1)); };
    EXPECT_EQ(shown(), "r");
    EXPECT_FALSE(meter->secondsUntilNextFrame());
    std::string played;
    FullMeterWorkshop::update(*meter, {numberValue(100)});
    for (played = shown(); meter->secondsUntilNextFrame() && played.size() < 9; played += shown()) {
        EXPECT_EQ(*meter->secondsUntilNextFrame(), 0.1);
        meter->advance();
    }
    EXPECT_EQ(played, "gbw");
}

TEST_F(FullPictures, buttonsFollowThePointer) {
    const auto path = save("button.png", "r.g.b.");
    const auto meter = workshop_.place("Button", {{"ButtonImage", path.c_str()}, {"X", "1"}});
    using State = FullMeter::PointerState;
    const auto shown = [&] { return rowsOf(drawn(*meter, {}, 3, 1)); };
    EXPECT_EQ(shown(), ".r.");
    EXPECT_TRUE(meter->isSolidAt({1.9, 0.5}));
    EXPECT_FALSE(meter->isSolidAt({2.1, 0.5}));
    EXPECT_FALSE(meter->isSolidAt({1e12, -1e12}));
    EXPECT_TRUE(meter->setPointerState(State::Pressed));
    EXPECT_FALSE(meter->setPointerState(State::Pressed));
    EXPECT_EQ(shown(), ".g.");
    meter->setPointerState(State::Over);
    EXPECT_EQ(shown(), ".b.");
}

TEST_F(FullPictures, backgroundsFillTheirWindow) {
    const auto path = save("back.png", "rg");
    const Shown rows[] = {
        {{}, {}, "..../...."},
        {{{"BackgroundMode", "1"}, {"SolidColor", "255,0,0"}}, {}, "..../...."},
        {{{"BackgroundMode", "2"}}, {},
            "(ff808080)(ff808080)(ff808080)(ff808080)/(ff808080)(ff808080)(ff808080)(ff808080)"},
        {{{"BackgroundMode", "2"}, {"SolidColor", "255,0,0"}, {"BevelType", "1"}}, {}, "wwww/wkkk"},
        {{{"BackgroundMode", "0"}, {"SolidColor", "255,0,0"}}, {}, "rg../...."},
        {{{"BackgroundMode", "3"}, {"BackgroundMargins", "1"}, {"ImageFlip", "Horizontal"}}, {}, "grrr/grrr"},
        {{{"BackgroundMode", "4"}, {"ImageTint", "255,0,0"}}, {}, "rkrk/rkrk"},
        {{{"BackgroundMode", "9"}}, {}, "..../...."},
    };
    FakePlatform fake;
    const PackFolders folders;
    const FullMeterContext context{folders, fake.platform, 100};
    for (const auto& row : rows) {
        Options options = optionsOf(row.options);
        options.set("Background", path);
        const auto background = FullBackground::create(options, context);
        background->update({});
        const bool isPicture = options.contains("BackgroundMode") && *options.find("BackgroundMode") == "0";
        EXPECT_EQ(background->boxSize(), isPicture ? (Size{2, 1}) : Size());
        background->setFrame({0, 0, 4, 2});
        EXPECT_EQ(rowsOf(drawn(*background, {}, 4, 2)), row.picture) << row.options.size();
    }
}

} // namespace

} // namespace Ostrel
