#include "OstrelEngine/Host/CanvasBackground.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <limits>

namespace Ostrel {
namespace {

/// One letter for each pixel of a column of pictures that tests draw in plain colors.
std::string letters(const QImage& picture) {
    std::string text;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            switch (picture.pixel(x, y)) {
            case 0xffff0000:
                text += 'r';
                break;
            case 0xff00ff00:
                text += 'g';
                break;
            case 0xff0000ff:
                text += 'b';
                break;
            case 0xffffffff:
                text += 'w';
                break;
            case 0:
                text += '.';
                break;
            default:
                text += '?';
            }
        }
        text += '/';
    }
    return text;
}

QImage imageOf(const std::vector<std::string>& rows) {
    QImage image(static_cast<int>(rows[0].size()), static_cast<int>(rows.size()), QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const char letter = rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
            image.setPixel(x, y,
                letter == 'r'       ? 0xffff0000
                    : letter == 'g' ? 0xff00ff00
                    : letter == 'b' ? 0xff0000ff
                                    : 0xffffffff);
        }
    return image;
}

std::string painted(CanvasBackground background, Size size) {
    QImage picture(static_cast<int>(size.width), static_cast<int>(size.height), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::magenta);
    {
        QPainter painter(&picture);
        background.paint(painter, picture.rect(), size, 1);
    }
    return letters(picture);
}

CanvasBackground background(std::int64_t mode, bool withImage, bool withColor) {
    CanvasBackground result;
    result.mode = mode;
    if (withImage)
        result.image = imageOf({"rg", "bw"});
    if (withColor)
        result.solidColor = Color{0, 0, 1, 1};
    return result;
}

TEST(CanvasBackground, choosesByMode) {
    struct Case {
        std::int64_t mode;
        bool image, color;
        const char* expected;
    };
    for (const Case& c :
        {Case{0, false, false, "../../"}, Case{0, false, true, "../../"}, Case{1, true, true, "../../"},
            Case{2, true, true, "bb/bb/"}, Case{2, true, false, "../../"}, Case{3, false, true, "../../"},
            // The whole image, upright only as one slice.
            Case{0, true, true, "bw/rg/"}, Case{4, true, true, "bw/rg/"}, Case{-7, true, false, "bw/rg/"},
            Case{3, true, true, "rg/bw/"}})
        EXPECT_EQ(painted(background(c.mode, c.image, c.color), {2, 2}), c.expected)
            << "mode " << c.mode << " image " << c.image << " color " << c.color;
}

TEST(CanvasBackground, cutsNineSlicesFromTheBottomAndKeepsThemUpright) {
    CanvasBackground slices;
    slices.mode = 3;
    slices.image = imageOf({"rgb", "wrg", "bwr"});
    slices.margins = {1, 1, 1, 1};
    // Corners as they are, edges and center stretched; the image's last row comes first.
    EXPECT_EQ(painted(slices, {5, 4}), "bwwwr/wrrrg/wrrrg/rgggb/");
    // No room for the edges: the corners remain.
    EXPECT_EQ(painted(slices, {2, 2}), "br/rb/");
}

TEST(CanvasBackground, cutsPiecesToTheImageAndStretchesThemOverTheirPlace) {
    CanvasBackground slices;
    slices.mode = 3;
    slices.image = imageOf({"rg", "bw"});
    // Left is wider than the image: of the top left piece, 5 by 1, two columns exist and fill five.
    slices.margins = {.top = 1, .right = 0, .bottom = 0, .left = 5};
    const std::string text = painted(slices, {6, 3});
    EXPECT_EQ(text.substr(0, 1), "b");
    EXPECT_EQ(text.substr(4, 3), "w./");
    // Below it the left edge: the image's first row, as wide, down to the bottom.
    EXPECT_EQ(text.substr(7, 1), "r");
    EXPECT_EQ(text.substr(11, 3), "g./");
    EXPECT_EQ(text.substr(14, 1), "r");
}

TEST(CanvasBackground, survivesMarginsOutOfAnyRange) {
    const double inf = std::numeric_limits<double>::infinity();
    for (const double margin : {-5.0, 1e9, -1e300, 1e300, inf, -inf, std::numeric_limits<double>::quiet_NaN()})
        for (const BackgroundMargins& margins :
            {BackgroundMargins{margin, 0, 0, 0}, BackgroundMargins{0, margin, 0, margin},
                BackgroundMargins{margin, margin, margin, margin}, BackgroundMargins{1, 0.5, margin, 0.5}}) {
            CanvasBackground slices = background(3, true, false);
            slices.margins = margins;
            EXPECT_EQ(painted(slices, {4, 4}).size(), 20u);
        }
}

} // namespace
} // namespace Ostrel
