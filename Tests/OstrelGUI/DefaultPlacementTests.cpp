#include "OstrelGUI/DefaultPlacement.h"

#include <gtest/gtest.h>

namespace Ostrel {
namespace {

std::vector<Rect> placed(Size screen, const std::vector<Size>& widgets) {
    DefaultPlacement placement(screen, widgets.size());
    std::vector<Rect> rects;
    for (const Size& size : widgets) {
        const Point origin = placement.next(size);
        rects.push_back({origin.x, origin.y, size.width, size.height});
    }
    return rects;
}

bool intersect(const Rect& a, const Rect& b) {
    return a.x < b.maxX() && b.x < a.maxX() && a.y < b.maxY() && b.y < a.maxY();
}

TEST(DefaultPlacement, putsAFewBesideEachOther) {
    const auto rects = placed({1000, 800}, {{300, 100}, {280, 240}, {200, 50}, {300, 200}, {700, 90}});
    EXPECT_EQ(rects[0], (Rect{100, 100, 300, 100}));
    EXPECT_EQ(rects[1], (Rect{420, 100, 280, 240}));
    EXPECT_EQ(rects[2], (Rect{720, 100, 200, 50}));
    EXPECT_EQ(rects[3], (Rect{100, 360, 300, 200})) << "above the tallest of the row";
    EXPECT_EQ(rects[4], (Rect{100, 580, 700, 90}));
    for (std::size_t i = 0; i < rects.size(); ++i)
        for (std::size_t k = 0; k < i; ++k)
            EXPECT_FALSE(intersect(rects[i], rects[k])) << i << " " << k;
}

TEST(DefaultPlacement, coversNoneWholeWhenTheScreenIsFull) {
    for (const Size& size : {Size{900, 700}, Size{2000, 2000}, Size{600, 300}}) {
        const auto rects = placed({1000, 800}, std::vector<Size>(9, size));
        for (std::size_t i = 0; i < rects.size(); ++i)
            for (std::size_t k = 0; k < i; ++k)
                EXPECT_NE((Point{rects[i].x, rects[i].y}), (Point{rects[k].x, rects[k].y})) << i << " " << k;
    }
}

TEST(DefaultPlacement, putsManyIntoAGridFromTheTopLeft) {
    const auto rects = placed({1920, 1080}, std::vector<Size>(50, {280, 370}));
    for (std::size_t i = 0; i < rects.size(); ++i) {
        EXPECT_EQ(rects[i].x, 20 + static_cast<double>(i % 10) * 180);
        EXPECT_EQ(1080 - rects[i].maxY(), 20 + static_cast<double>(i / 10) * 130) << "distance from the top";
    }
}

} // namespace
} // namespace Ostrel
