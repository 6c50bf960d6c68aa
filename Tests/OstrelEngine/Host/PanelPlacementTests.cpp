#include "OstrelEngine/Host/PanelPlacement.h"

#include <gtest/gtest.h>

#include <limits>

namespace Ostrel {
namespace {

TEST(PanelPlacement, turnsOriginsIntoFramesAndBack) {
    const QRect primary(1280, 0, 1920, 1080);
    EXPECT_EQ(PanelPlacement::frame({100, 100}, {220, 50}, primary), QRect(1380, 930, 220, 50));
    for (const Point origin : {Point{0, 0}, Point{-1200, 40}, Point{1900, 1079}, Point{17, -30}})
        EXPECT_EQ(PanelPlacement::origin(PanelPlacement::frame(origin, {221, 77}, primary), primary), origin);
    // Twice as high, the same origin: the bottom stays.
    EXPECT_EQ(PanelPlacement::frame({100, 100}, {220, 100}, primary).bottom(),
        PanelPlacement::frame({100, 100}, {220, 50}, primary).bottom());
}

TEST(PanelPlacement, boundsTheSizeOfWindows) {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    struct Case {
        Size widget;
        double scale;
        QSize expected;
    };
    for (const Case& c : {Case{{220, 50}, 1, {220, 50}}, Case{{220.01, 49.5}, 2, {221, 50}}, Case{{0, -5}, 1, {1, 1}},
             Case{{nan, nan}, 1, {1, 1}}, Case{{1e9, 50}, 1, {32767, 50}}, Case{{50, 1e9}, 2, {50, 16383}},
             Case{{1e9, 1e9}, 1, {32767, 1024}}, Case{{inf, inf}, 2, {16383, 512}}})
        EXPECT_EQ(PanelPlacement::windowSize(c.widget, c.scale), c.expected) << c.widget.width << " " << c.scale;
}

TEST(PanelPlacement, bringsBackWhatCannotBeReached) {
    const std::vector<QRect> screens{{0, 0, 1000, 800}, {1000, 0, 500, 500}};
    struct Case {
        QRect frame, expected;
    };
    for (const Case& c : {
             Case{{10, 10, 100, 50}, {10, 10, 100, 50}},
             // Partly out is where somebody may have put it.
             Case{{-60, 790, 100, 50}, {0, 750, 100, 50}},
             Case{{-60, 700, 100, 50}, {-60, 700, 100, 50}},
             Case{{1450, 480, 100, 50}, {1450, 480, 100, 50}},
             // Small ones count as they are.
             Case{{990, 10, 8, 8}, {990, 10, 8, 8}},
             Case{{3000, 100, 100, 50}, {1400, 100, 100, 50}},
             Case{{300, 2000, 100, 50}, {300, 750, 100, 50}},
             Case{{-4000, -4000, 100, 50}, {0, 0, 100, 50}},
             Case{{-9000, 3000, 2000, 900}, {0, -100, 2000, 900}},
         })
        EXPECT_EQ(PanelPlacement::broughtIntoView(c.frame, screens), c.expected) << c.frame.x() << "," << c.frame.y();
    EXPECT_EQ(PanelPlacement::broughtIntoView({9000, 0, 5, 5}, {}), QRect(9000, 0, 5, 5));
}

} // namespace
} // namespace Ostrel
