#include "OstrelEngine/Meters/DecodedPictureColors.h"

#include "OstrelEngine/Meters/ImageAverage.h"
#include "Support/TemporaryFolder.h"

#include <QBuffer>
#include <QColor>
#include <QImage>

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <sys/stat.h>

namespace Ostrel {

namespace {

/// In 255ths, rounded, as a skin sees it.
std::string shown(const std::optional<RGBColor>& color) {
    if (!color)
        return "nothing";
    std::string text;
    for (const double component : {color->red, color->green, color->blue})
        text += std::to_string(std::lround(component * 255)) + " ";
    return text;
}

std::string encoded(const QImage& image, const char* format = "PNG") {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format, 100));
    return bytes.toStdString();
}

std::string decodedBase64(const char* text) {
    return QByteArray::fromBase64(text).toStdString();
}

QImage filled(QImage::Format format, QColor color, int width = 3, int height = 3) {
    QImage image(width, height, format);
    image.fill(color);
    return image;
}

RGBColor averageByPixel(const QImage& image) {
    RGBColor sum;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            sum = {sum.red + qRed(pixel), sum.green + qGreen(pixel), sum.blue + qBlue(pixel)};
        }
    }
    const double whole = 255.0 * image.width() * image.height();
    return {sum.red / whole, sum.green / whole, sum.blue / whole};
}

} // namespace

TEST(ImageAverage, addsUpEveryPixelOfAnySize) {
    std::mt19937 random(7);
    const QSize sizes[] = {{1, 1}, {3, 5}, {4, 4}, {7, 1}, {1, 1030}, {1031, 3}, {4117, 2}};
    for (const QSize size : sizes) {
        QImage image(size, QImage::Format_ARGB32);
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x)
                image.setPixel(x, y, static_cast<QRgb>(random()));
        EXPECT_EQ(averageColor(image), averageByPixel(image)) << size.width();
        image.fill(Qt::white);
        EXPECT_EQ(averageColor(image), (RGBColor{1, 1, 1})) << size.width() << ": no sum may overflow";
    }
}

TEST(DecodedPictureColors, averagesTheColorsThatAFileStores) {
    const TemporaryFolder folder;
    QImage halves = filled(QImage::Format_ARGB32, QColor(255, 0, 100, 255), 4, 1);
    halves.setPixel(0, 0, qRgba(0, 200, 100, 0));
    halves.setPixel(1, 0, qRgba(0, 200, 100, 1));
    const QColor deep = QColor::fromRgba64(0x8000, 0x4000, 0xC000);
    const struct {
        std::string name, bytes, shown;
    } rows[] = {
        {"clear pixels count in full", encoded(halves), "128 100 100 "},
        {"plain", encoded(filled(QImage::Format_RGB32, QColor(1, 2, 3))), "1 2 3 "},
        {"one row", encoded(filled(QImage::Format_RGB32, QColor(9, 8, 7), 5, 1)), "9 8 7 "},
        {"deep", encoded(filled(QImage::Format_RGBA64, deep)), "128 64 191 "},
        {"JPEG", encoded(filled(QImage::Format_RGB32, QColor(250, 120, 0), 16, 16), "JPG"), "250 120 0 "},
        {"bottom up", encoded(filled(QImage::Format_RGB32, QColor(250, 120, 0)), "BMP"), "250 120 0 "},
        {"first of an animation",
            decodedBase64("R0lGODlhAgABAPAAAAoUHgAAACH5BAAKAAAAIf8LTkVUU0NBUEUyLjADAQAAACwAAAAAAgABAAACAgQKACH5BAAKAA"
                          "AALAAAAAACAAEAgMhkMgAAAAICBAoAOw=="),
            "10 20 30 "},
        {"gray", encoded(filled(QImage::Format_Grayscale8, Qt::gray)), "nothing"},
        {"deep gray", encoded(filled(QImage::Format_Grayscale16, Qt::gray)), "nothing"},
        {"gray JPEG", encoded(filled(QImage::Format_Grayscale8, Qt::gray), "JPG"), "nothing"},
        {"gray with alpha",
            decodedBase64("iVBORw0KGgoAAAANSUhEUgAAAAIAAAABCAQAAABeK7cBAAAADUlEQVR4nGM48Z+rAQAGtgJS0/G26gAAAABJRU5Erk"
                          "Jggg=="),
            "nothing"},
        {"indexed",
            decodedBase64("iVBORw0KGgoAAAANSUhEUgAAAAIAAAABCAMAAADD/I+4AAAABlBMVEX/AAAA/wDSh+9xAAAAC0lEQVR4nGNgYAQAAA"
                          "QAAr96P0oAAAAASUVORK5CYII="),
            "nothing"},
        {"black and white", encoded(filled(QImage::Format_Mono, Qt::black)), "nothing"},
        {"shapes", "<svg xmlns='http://www.w3.org/2000/svg' width='4' height='4'><rect width='4' height='4'/></svg>",
            "nothing"},
        {"text", "no picture", "nothing"},
        {"empty", "", "nothing"},
        {"cut off", encoded(filled(QImage::Format_RGB32, Qt::red)).substr(0, 20), "nothing"},
    };
    DecodedPictureColors colors;
    for (const auto& row : rows)
        EXPECT_EQ(shown(colors.average(folder.write(row.name, row.bytes))), row.shown) << row.name;
    EXPECT_EQ(shown(colors.average(folder.path())), "nothing");
    EXPECT_EQ(shown(colors.average(folder.path() + "/missing")), "nothing");
    EXPECT_EQ(shown(colors.average(folder.path() + "/PLAIN")), "1 2 3 ");
    const auto pipe = folder.path() + "/pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(shown(colors.average(pipe)), "nothing");
    // A header that claims 100,000 by 100,000 pixels.
    auto hostile = encoded(filled(QImage::Format_RGB32, Qt::red), "BMP");
    hostile.replace(18, 8, std::string("\xA0\x86\x01\x00\xA0\x86\x01\x00", 8));
    EXPECT_EQ(shown(colors.average(folder.write("hostile", hostile))), "nothing");
}

TEST(DecodedPictureColors, decodesAFileAgainOnlyWhenItChanged) {
    const TemporaryFolder folder;
    const auto path = folder.write("cover.png", encoded(filled(QImage::Format_RGB32, QColor(1, 2, 3))));
    DecodedPictureColors colors;
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(shown(colors.average(path)), "1 2 3 ");
    EXPECT_EQ(colors.decodedFiles(), 1);
    // As a player replaces a cover: another file of the same size and time under the same name.
    const auto time = std::filesystem::last_write_time(path);
    const auto other = folder.write("other.png", encoded(filled(QImage::Format_RGB32, QColor(4, 2, 3))));
    EXPECT_EQ(std::filesystem::file_size(path), std::filesystem::file_size(other));
    std::filesystem::last_write_time(other, time);
    std::filesystem::rename(other, path);
    EXPECT_EQ(shown(colors.average(path)), "4 2 3 ");
    folder.write("cover.png", "no picture");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(shown(colors.average(path)), "nothing");
    EXPECT_EQ(colors.decodedFiles(), 3) << "that a file is no picture is remembered too";
    std::filesystem::remove(path);
    EXPECT_EQ(shown(colors.average(path)), "nothing");
}

} // namespace Ostrel
