#include "OstrelEngine/Meters/ImageMeter.h"

#include "Meters/MeterFixture.h"
#include "Support/TemporaryFolder.h"

#include <QBuffer>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace Ostrel {

namespace {

constexpr QRgb Red = 0xFFFF0000;
constexpr QRgb Blue = 0xFF0000FF;

std::string pngOf(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes.toStdString();
}

/// Red above blue.
std::string flag(int width = 4, int height = 2) {
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Red);
    for (int y = height / 2; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, Blue);
    return pngOf(image);
}

struct ScriptedNetwork final : RemoteReader {
    std::optional<std::string> read(const std::string& url) override {
        asked += url + ' ';
        return answer;
    }
    std::string asked;
    std::optional<std::string> answer;
};

class ImageMeterTest : public testing::Test {
protected:
    std::unique_ptr<ImageMeter> make(const OptionPairs& pairs, MeterFrame frame = {0, 0, 8, 8}) {
        auto meter = std::make_unique<ImageMeter>(
            meterOfType("Image"), optionsOf(pairs), folder_.path() + "/Suite/Sub/Skin.ini", platform_);
        meter->setFrame(frame);
        return meter;
    }
    std::unique_ptr<ImageMeter> makeNamed(const std::string& name) { return make({{"ImageName", name.c_str()}}); }

    static QImage draw(ImageMeter& meter, MeasureValues values = {}) { return drawn(meter, values, 8, 8); }

    TemporaryFolder folder_;
    FakePlatform fake_;
    ScriptedNetwork network_;
    Platform platform_{fake_.clock, fake_.queue, fake_.host, fake_.fonts, network_};
};

} // namespace

TEST_F(ImageMeterTest, resolvesNamesAgainstTheSkin) {
    folder_.write("Suite/@Resources/x", "");
    const std::string root = folder_.path() + "/Suite/";
    const std::string skin = root + "Sub/Skin.ini";
    const std::pair<const char*, std::string> rows[] = {
        {"a.png", root + "Sub/a.png"},
        {"Images\\a.png", root + "Sub/Images/a.png"},
        {"#@#Images\\a.png", root + "@Resources/Images/a.png"},
        {"#CURRENTPATH#a.png", root + "Sub/a.png"},
        {"/abs/a.png", "/abs/a.png"},
        {"HTTPS://host/a.png", "HTTPS://host/a.png"},
        {"data:image/png;base64,AA==", "data:image/png;base64,AA=="},
        {"ftp://host/a.png", root + "Sub/ftp://host/a.png"},
        {"C:\\a.png", root + "Sub/C:/a.png"},
        {"http", root + "Sub/http"},
    };
    for (const auto& [name, path] : rows)
        EXPECT_EQ(ImageMeter::resolveImagePath(name, skin), path) << name;
    EXPECT_EQ(ImageMeter::resolveImagePath("#@#a", "/nowhere/x/Skin.ini"), "/nowhere/x/@Resources/a");
}

TEST_F(ImageMeterTest, loadsFilesAndURLs) {
    folder_.write("Suite/Sub/Images/Flag.PNG", flag());
    const Size size{4, 2};
    EXPECT_EQ(makeNamed("images\\flag.png")->imageSize(), size) << "in any case";
    EXPECT_EQ(makeNamed("file://" + folder_.path() + "/Suite/Sub/Images/Flag.PNG")->imageSize(), size);
    const auto base64 = QByteArray::fromStdString(flag()).toBase64().toStdString();
    EXPECT_EQ(makeNamed("data:image/png;base64," + base64)->imageSize(), size);
    EXPECT_EQ(
        makeNamed("data:image/svg+xml,%3Csvg xmlns='http://www.w3.org/2000/svg' width='4' height='2'/%3E")->imageSize(),
        size);
    network_.answer = flag();
    EXPECT_EQ(makeNamed("https://host/a.png")->imageSize(), size);
    network_.answer = std::nullopt;
    EXPECT_EQ(makeNamed("http://host/b.png")->imageSize(), std::nullopt);
    EXPECT_EQ(network_.asked, "https://host/a.png http://host/b.png ");
}

TEST_F(ImageMeterTest, remainsWithoutAnImageOnAnythingElse) {
    folder_.write("Suite/Sub/text.png", "no picture");
    folder_.write("Suite/Sub/cut.png", flag(64, 64).substr(0, 60));
    mkfifo((folder_.path() + "/Suite/Sub/pipe.png").c_str(), 0600);
    folder_.write("Suite/Sub/bomb.png", "P6\n60000 60000\n255\n");
    std::string multiplied = "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink' "
                             "width='9' height='9'><g id='g0'><rect width='9' height='9'/></g>";
    for (int i = 1; i < 9; ++i) {
        multiplied += "<g id='g" + std::to_string(i) + "'>";
        for (int k = 0; k < 40; ++k)
            multiplied += "<use xlink:href='#g" + std::to_string(i - 1) + "'/>";
        multiplied += "</g>";
    }
    folder_.write("Suite/Sub/multiplied.svg", multiplied + "</svg>");
    for (const auto* name : {"multiplied.svg", "text.png", "cut.png", "pipe.png", "bomb.png", "none.png", ".", "",
             "/dev/zero", "data:", "data:,x",
             "data:image/svg+xml,<svg xmlns='http://www.w3.org/2000/svg' width='60000' height='60000'/>"}) {
        const auto meter = make({{"ImageName", name}, {"SolidColor", "255,0,0"}});
        EXPECT_EQ(draw(*meter).pixel(0, 0), Red) << name << ": the background still shows";
        EXPECT_EQ(meter->imageSize(), std::nullopt) << name;
    }
}

TEST_F(ImageMeterTest, drawsUprightIntoItsFrame) {
    folder_.write("Suite/Sub/a.png", flag());
    const QImage image = draw(*make({{"ImageName", "a.png"}}, {2, 1, 4, 4}));
    EXPECT_EQ(inkOf(image), QRect(2, 1, 4, 4));
    EXPECT_EQ(image.pixel(3, 1), Red);
    EXPECT_EQ(image.pixel(3, 4), Blue);
    EXPECT_TRUE(inkOf(draw(*make({{"ImageName", "a.png"}}, {2, 1, 0, 0}))).isEmpty());
}

TEST_F(ImageMeterTest, fitsAndCovers) {
    QImage wide(4, 2, QImage::Format_ARGB32_Premultiplied);
    wide.fill(Red);
    for (int y = 0; y < 2; ++y)
        wide.setPixel(1, y, Blue), wide.setPixel(2, y, Blue);
    folder_.write("Suite/Sub/a.png", pngOf(wide));
    const auto ink = [&](const char* mode) {
        return inkOf(draw(*make({{"ImageName", "a.png"}, {"PreserveAspectRatio", mode}})));
    };
    EXPECT_EQ(ink("0"), QRect(0, 0, 8, 8));
    EXPECT_EQ(ink("x"), QRect(0, 0, 8, 8));
    EXPECT_EQ(ink("1"), QRect(0, 2, 8, 4));
    EXPECT_EQ(ink("-7"), QRect(0, 2, 8, 4));
    EXPECT_EQ(ink("2"), QRect(0, 0, 8, 8));
    const QImage covered = draw(*make({{"ImageName", "a.png"}, {"PreserveAspectRatio", "2"}}));
    EXPECT_EQ(covered.pixel(1, 4), Blue) << "the sides are cut off";
    EXPECT_EQ(covered.pixel(6, 4), Blue);
}

TEST_F(ImageMeterTest, averagesWhatItDrawsSmaller) {
    QImage lines(64, 64, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            lines.setPixel(x, y, x % 2 ? 0xFFFFFFFF : 0xFF000000);
    folder_.write("Suite/Sub/a.png", pngOf(lines));
    EXPECT_NEAR(qGreen(draw(*makeNamed("a.png")).pixel(4, 4)), 128, 2);
}

TEST_F(ImageMeterTest, replacesColorByTheTintWhereThereIsOpacity) {
    QImage half(2, 1, QImage::Format_ARGB32_Premultiplied);
    half.fill(Qt::transparent);
    half.setPixelColor(0, 0, QColor(200, 100, 0, 102));
    folder_.write("Suite/Sub/a.png", pngOf(half));
    const auto tinted = [&](const char* tint) {
        const QImage image = draw(*make({{"ImageName", "a.png"}, {"ImageTint", tint}}, {0, 0, 2, 1}));
        EXPECT_EQ(image.pixel(1, 0), 0U) << "nothing where the image is transparent";
        return image.pixelColor(0, 0);
    };
    EXPECT_EQ(tinted("0,0,255"), QColor(0, 0, 255, 102)) << "a silhouette";
    const auto washed = tinted("0,0,255,128");
    EXPECT_NEAR(washed.red(), 100, 3);
    EXPECT_NEAR(washed.blue(), 128, 3);
    EXPECT_EQ(washed.alpha(), 102);
    EXPECT_EQ(tinted("what").red(), 200);
}

TEST_F(ImageMeterTest, takesItsNameFromTheValues) {
    folder_.write("Suite/Sub/x/y.png", flag());
    folder_.write("Suite/Sub/0.1.png", flag(2, 2));
    folder_.write("Suite/Sub/[B].png", flag(6, 6));
    const std::vector both = {textValue(" x "), textValue("y")};
    const auto dynamic = make({{"ImageName", "[A]/[B].png"}, {"DynamicVariables", "1"}});
    EXPECT_EQ(dynamic->imageSize(), std::nullopt) << "not before it is drawn";
    draw(*dynamic, both);
    EXPECT_EQ(dynamic->imageSize(), (Size{4, 2}));
    const auto number = make({{"ImageName", "[N].png"}, {"DynamicVariables", "1"}});
    draw(*number, std::vector{numberValue(0.1)});
    EXPECT_EQ(number->imageSize(), (Size{2, 2}));
    const auto bound = make({});
    draw(*bound, std::vector{textValue(" x/y.png\n")});
    EXPECT_EQ(bound->imageSize(), (Size{4, 2}));
    draw(*bound, {});
    EXPECT_EQ(bound->imageSize(), (Size{4, 2})) << "without a name the image stays";
    EXPECT_EQ(makeNamed("[B].png")->imageSize(), (Size{6, 6})) << "no reference without DynamicVariables";
}

TEST_F(ImageMeterTest, keepsReferencesThatHaveNoValue) {
    folder_.write("Suite/Sub/x/[B].png", flag());
    folder_.write("Suite/Sub/[#a][!b][]x.png", flag(2, 2));
    const auto first = make({{"ImageName", "[A]/[B].png"}, {"DynamicVariables", "1"}});
    draw(*first, std::vector{textValue("x")});
    EXPECT_EQ(first->imageSize(), (Size{4, 2}));
    const auto other = make({{"ImageName", "[#a][!b][][C].png"}, {"DynamicVariables", "1"}});
    draw(*other, std::vector{textValue("x")});
    EXPECT_EQ(other->imageSize(), (Size{2, 2}));
}

TEST_F(ImageMeterTest, tellsWhenItLooksDifferent) {
    folder_.write("Suite/Sub/a.png", flag());
    const auto meter = make({});
    const std::vector first = {textValue("a.png")};
    const std::vector second = {textValue("b.png")};
    const std::vector none = {textValue("")};
    EXPECT_EQ(meter->imageSize(), std::nullopt);
    EXPECT_TRUE(meter->updateAppearance(first));
    EXPECT_EQ(meter->imageSize(), (Size{4, 2})) << "the layout needs its size before it is drawn";
    EXPECT_FALSE(meter->updateAppearance(first));
    EXPECT_TRUE(meter->updateAppearance(second));
    EXPECT_FALSE(meter->updateAppearance(none));
    meter->setOption("ImageTint", "1,2,3");
    EXPECT_TRUE(meter->updateAppearance(none));
    meter->setOption("Group", "G");
    EXPECT_FALSE(meter->updateAppearance(none));
}

TEST_F(ImageMeterTest, doesNotTryAMissingImageAgain) {
    const auto meter = makeNamed("https://host/a.png");
    draw(*meter);
    draw(*meter);
    EXPECT_EQ(network_.asked, "https://host/a.png ");
    meter->setOption("ImageName", "https://host/b.png");
    draw(*meter);
    EXPECT_EQ(network_.asked, "https://host/a.png https://host/b.png ");
}

} // namespace Ostrel
