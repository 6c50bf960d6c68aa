#include "OstrelPlatform/Linux/X11/WindowShape.h"

#include <QImage>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace Ostrel {
namespace {

QRegion visiblePixels(const QImage& picture) {
    QRegion region;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (qAlpha(picture.pixel(x, y)) >= 128)
                region += QRect(x, y, 1, 1);
    return region;
}

bool samePixels(const QRegion& a, const QRegion& b) {
    return a.xored(b).isEmpty();
}

TEST(WindowShape, followsThePictureWhereItChanged) {
    std::mt19937 random(7);
    const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    QImage picture(24, 16, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    WindowShape shape;
    EXPECT_FALSE(shape.follow(picture, {picture.rect()}));
    for (int step = 0; step < 300; ++step) {
        const QRect part(below(24), below(16), 1 + below(12), 1 + below(8));
        const QColor color(0, 0, 0, below(2) ? below(256) : 255 * below(2));
        const QRegion before = visiblePixels(picture);
        for (int y = part.top(); y <= std::min(part.bottom(), 15); ++y)
            for (int x = part.left(); x <= std::min(part.right(), 23); ++x)
                picture.setPixelColor(x, y, color);
        const QRegion expected = visiblePixels(picture);
        EXPECT_EQ(shape.follow(picture, {part}), !samePixels(before, expected)) << "step " << step;
        ASSERT_TRUE(samePixels(shape.region(), expected)) << "step " << step;
    }
    const QImage smaller = picture.copy(0, 0, 10, 10);
    shape.follow(smaller, {smaller.rect()});
    EXPECT_TRUE(samePixels(shape.region(), visiblePixels(smaller)));
}

} // namespace
} // namespace Ostrel
