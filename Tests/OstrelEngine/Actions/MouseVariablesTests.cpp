#include "OstrelEngine/Actions/MouseVariables.h"

#include <gtest/gtest.h>

namespace Ostrel::MouseVariables {

TEST(MouseVariables, countFromTheWidgetAndFromTheMeter) {
    constexpr Rect Meter = {10, 20, 200, 40};
    const std::string_view all = "$MouseX:%$ $MouseY:%$ $MouseX:$ $MouseY:$ $MouseX$ $MouseY$";
    const struct {
        Point point;
        std::optional<Rect> source;
        Decimals decimals;
        std::string_view text;
    } rows[] = {
        {{60, 30}, Meter, Decimals::asNeeded, "25 25 50 10 60 30"},
        {{60.5, 30.25}, Meter, Decimals::asNeeded, "25.25 25.625 50.5 10.25 60.5 30.25"},
        {{60.5, 31.5}, Meter, Decimals::none, "25 29 50 12 60 32"},
        {{500, -7}, Meter, Decimals::none, "100 0 490 -27 500 -7"},
        {{3.5, 4}, std::nullopt, Decimals::asNeeded, "0 0 3.5 4 3.5 4"},
        {{3, 4}, Rect{1, 1, 0, 2}, Decimals::none, "0 100 2 3 3 4"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(substitute(all, row.point, row.source, row.decimals), row.text);
}

TEST(MouseVariables, knowTheirExactSpellingOnly) {
    EXPECT_EQ(substitute("$mousex$ $MouseX $MouseZ$ $$MouseX$$", {1, 2}, std::nullopt, Decimals::none),
        "$mousex$ $MouseX $MouseZ$ $1$");
}

} // namespace Ostrel::MouseVariables
