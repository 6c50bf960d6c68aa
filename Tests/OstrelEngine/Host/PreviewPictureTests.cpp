#include "OstrelEngine/Host/PreviewPicture.h"

#include <QImage>

#include <gtest/gtest.h>

namespace Ostrel {
namespace {

QImage decoded(const std::optional<std::string>& png) {
    return png ? QImage::fromData(QByteArray::fromStdString(*png), "PNG") : QImage();
}

QImage picture(int width, int height, QColor color = Qt::red) {
    QImage result(width, height, QImage::Format_ARGB32_Premultiplied);
    result.fill(color);
    return result;
}

TEST(PreviewPicture, isAsLargeAsTheWidgetAndNoLargerThanItMay) {
    struct Row {
        QSize pixels;
        Size size;
        QSize preview;
    };
    const Row rows[] = {
        {{840, 420}, {840, 420}, {420, 210}},
        {{100, 50}, {100, 50}, {100, 50}},
        {{200, 100}, {100, 50}, {100, 50}}, // two pixels a point
        {{101, 51}, {100.2, 50.5}, {101, 51}},
        {{420, 2000}, {420, 2000}, {88, 420}},
        {{2000, 2}, {2000, 2}, {420, 1}},
        {{1, 50}, {1, 50}, {0, 0}},
        {{50, 1}, {50, 0.5}, {0, 0}},
        {{2, 2}, {1.5, 1.5}, {2, 2}},
        {{0, 0}, {50, 50}, {0, 0}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(
            decoded(previewPNG(picture(row.pixels.width(), row.pixels.height()), row.size, 420)).size(), row.preview)
            << row.size.width << " x " << row.size.height;
}

TEST(PreviewPicture, keepsTransparencyAndIsMadeSmallerSmoothly) {
    const QColor glass(255, 0, 0, 128);
    EXPECT_EQ(decoded(previewPNG(picture(10, 10, glass), {10, 10}, 420)).pixelColor(5, 5), glass);

    QImage stripes = picture(840, 840, Qt::black);
    for (int y = 0; y < stripes.height(); ++y)
        for (int x = 0; x < stripes.width(); x += 2)
            stripes.setPixelColor(x, y, Qt::white);
    const int gray = decoded(previewPNG(stripes, {840, 840}, 420)).pixelColor(200, 200).red();
    EXPECT_GT(gray, 100);
    EXPECT_LT(gray, 155);
}

} // namespace
} // namespace Ostrel
