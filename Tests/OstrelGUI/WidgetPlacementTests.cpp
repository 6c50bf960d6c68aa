#include "OstrelGUI/WidgetPlacement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace Ostrel {
namespace {

class WidgetPlacementTest : public testing::Test {
protected:
    Point open(Size size) {
        const Point origin = placement.choose(size, running);
        // As a window system rounds a window.
        running.push_back({std::round(origin.x), std::round(origin.y), std::ceil(size.width), std::ceil(size.height)});
        return origin;
    }

    WidgetPlacement placement{[] { return Size{1000, 800}; }};
    std::vector<Rect> running;
};

TEST_F(WidgetPlacementTest, opensEachAtTheFirstFreePlace) {
    EXPECT_EQ(open({299.3, 99.5}), (Point{100, 100}));
    EXPECT_EQ(open({200, 300}), (Point{420, 100}));
    EXPECT_EQ(open({900, 50}), (Point{100, 420})) << "no room in the row, nor above the first";
    EXPECT_EQ(open({300, 90}), (Point{640, 100}));
    EXPECT_EQ(open({300, 180}), (Point{100, 210})) << "above the first, beside the high one";
    running.erase(running.begin());
    EXPECT_EQ(open({250, 90}), (Point{100, 100})) << "the first was stopped or moved away";
}

TEST_F(WidgetPlacementTest, neverCoversAnotherWhole) {
    for (int i = 0; i < 30; ++i) {
        const auto others = running;
        const Point origin = open({900, 700});
        EXPECT_EQ(std::ranges::count(others, origin,
                      [](const Rect& frame) {
                          return Point{frame.x, frame.y};
                      }),
            0)
            << i;
    }
}

TEST_F(WidgetPlacementTest, setsManyThatAreOpenedTogetherIntoAGrid) {
    open({300, 100});
    placement.beginTogether(2);
    EXPECT_EQ(open({100, 100}), (Point{420, 100})) << "a few do not cover what is there";
    placement.beginTogether(30);
    EXPECT_EQ(open({100, 100}), (Point{20, 680})) << "many make a grid";
    placement.endTogether();
    EXPECT_NE(open({100, 100}), (Point{200, 680}));
}

} // namespace
} // namespace Ostrel
