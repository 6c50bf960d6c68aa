#include "OstrelEngine/Meters/Full/FullMeterFixture.h"
#include "Support/GoldenImage.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Ostrel {
namespace {

using Cell = std::vector<std::pair<const char*, const char*>>;

/// Each shape meter in a square of 60 points, ten in a row, on a grey ground.
QImage sheet(const std::vector<Cell>& cells, double scale) {
    constexpr int Side = 60;
    constexpr int PerRow = 10;
    const auto rows = (static_cast<int>(cells.size()) + PerRow - 1) / PerRow;
    QImage picture = transparentCanvas(Side * PerRow, Side * rows, scale);
    picture.fill(QColor(120, 130, 140));
    FullMeterWorkshop workshop;
    QPainter painter(&picture);
    painter.scale(scale, scale);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        Options options;
        for (const auto& [key, value] : cells[i])
            options.set(key, value);
        const auto at = static_cast<int>(i);
        options.set("X", std::to_string(at % PerRow * Side + 5));
        options.set("Y", std::to_string(at / PerRow * Side + 5));
        const auto meter = workshop.make("Shape", options);
        FullMeterWorkshop::update(*meter, {});
        meter->draw(painter, {});
    }
    return picture;
}

const std::vector<Cell> Kinds = {
    {{"Shape", "Rectangle 0,0,50,50"}},
    {{"Shape", "Rectangle 2,2,46,30,8 | Fill Color 200,60,60 | StrokeWidth 0"}},
    {{"Shape", "rectangle 45,45,-40,(-20-20),4,16, | fillcolor 3C78C8 | strokewidth 2.5 | strokecolor FFFFFF80"}},
    {{"Shape", "Ellipse 25,25,20"}},
    {{"Shape", "Ellipse 25,25,24,10 | Fill Color 40,160,80,128 | Stroke Color 255,255,255 | StrokeWidth 3"}},
    {{"Shape", "Line 0,10,50,10"}, {"Shape3", "Line 0,20,50,40 | StrokeWidth 5 | Stroke Color 255,200,0"}},
    {{"Shape", "Arc 5,25,45,25"}, {"Shape2", "Arc 5,30,45,30,*,*,*,1 | Stroke Color 255,0,0"},
        {"Shape3", "Arc 10,40,40,40,20,8,30,0,1,1 | Fill Color 255,255,0,100"}},
    {{"Shape", "Curve 0,0,50,0,25,50 | StrokeWidth 2"},
        {"Shape2", "Curve 0,50,50,50,0,10,50,10,1 | Fill Color 0,0,0,90"}},
    {{"Shape", "Path Star | Fill Color 255,220,0"},
        {"Star", "25,2 | LineTo 40,48 | LineTo 2,18 | LineTo 48,18 | LineTo 10,48 | ClosePath 1"}},
    {{"Shape", "Path1 Star | Fill Color 255,220,0"},
        {"Star", "25,2 | LineTo 40,48 | LineTo 2,18 | LineTo 48,18 | LineTo 10,48 | ClosePath 1"}},
    {{"Shape", "Path Mixed | StrokeWidth 3"},
        {"Mixed", "5,45 | LineTo 5,20 | ArcTo 25,20,10,10 | CurveTo 45,20,35,0 | CurveTo 45,45,60,20,30,45"}},
    {{"Shape", "Path Parts | StrokeWidth 6 | Fill Color 255,255,255,90"},
        {"Parts", "8,8 | LineTo 42,8 | SetNoStroke 1 | LineTo 42,42 | SetNoStroke 0 | LineTo 8,42 | ClosePath 1"}},
    {{"Shape", "Path Round | StrokeWidth 10 | Stroke Color 0,0,0,150 | Fill Color 0,0,0,0"},
        {"Round",
            "10,10 | LineTo 40,10 | SetRoundJoin 1 | LineTo 40,40 | SetRoundJoin 0 | LineTo 10,40 | ClosePath 1"}},
    {{"Shape", "Rectangle 2,2,30,30 | Fill Color 200,60,60"}, {"Shape2", "Ellipse 32,32,16"},
        {"Shape3", "Combine Shape | Union Shape2"}},
    {{"Shape", "Rectangle 2,2,30,30 | Fill Color 200,60,60"}, {"Shape2", "Ellipse 32,32,16"},
        {"Shape3", "Combine Shape | Intersect Shape2"}},
    {{"Shape", "Rectangle 2,2,30,30 | Fill Color 200,60,60"}, {"Shape2", "Ellipse 32,32,16"},
        {"Shape3", "Combine Shape | XOR Shape2"}},
    {{"Shape", "Rectangle 2,2,30,30 | Fill Color 200,60,60 | StrokeWidth 2"},
        {"Shape2", "Ellipse 32,32,16 | Offset -4,-4"},
        {"Shape3", "Combine Shape | Exclude Shape2 | Rotate 45 | Fill Color 0,0,255"}},
    {{"Shape", "Ellipse 25,25,22"}, {"Shape2", "Ellipse 25,25,14"}, {"Shape3", "Combine Shape | Exclude Shape2"},
        {"Shape4", "Rectangle 0,20,50,10"}, {"Shape5", "Combine Shape3 | Exclude Shape4 | Offset 0,2"}},
    {{"Shape", "Arc 5,30,45,30"}, {"Shape2", "Rectangle 20,0,10,50"}, {"Shape3", "Combine Shape | Union Shape2"}},
    {{"Shape", "Rectangle 5,5,40,40 | Extend Look, More"}, {"Look", "Fill Color 90,40,160 | StrokeWidth 4"},
        {"More", "Stroke Color 255,255,255 | StrokeWidth 1 | Extend Look"}},
};

const std::vector<Cell> Modifiers = {
    {{"Shape", "Line 10,10,40,10 | StrokeWidth 9 | StrokeStartCap Round | StrokeEndCap Triangle"},
        {"Shape2", "Line 10,28,40,28 | StrokeWidth 9 | StrokeStartCap Square"},
        {"Shape3", "Line 10,44,40,44 | StrokeWidth 9 | StrokeStartCap Triangle | StrokeEndCap Round"}},
    {{"Shape", "Line 0,5,50,5 | StrokeWidth 3 | StrokeDashes 3,1"},
        {"Shape2", "Line 2,15,50,15 | StrokeWidth 4 | StrokeDashes 0,2 | StrokeDashCap Round"},
        {"Shape3", "Line 0,25,50,25 | StrokeWidth 3 | StrokeDashes 2,1,1"},
        {"Shape4", "Line 0,35,50,35 | StrokeWidth 3 | StrokeDashes 3,1 | StrokeDashOffset 2"},
        {"Shape5",
            "Line 4,45,46,45 | StrokeWidth 5 | StrokeDashes 1,2 | StrokeDashCap Triangle | StrokeStartCap Round"}},
    {{"Shape", "Ellipse 25,25,20 | StrokeWidth 4 | StrokeDashes 1,1 | Fill Color 0,0,0,0 | Stroke Color 255,230,0"}},
    {{"Shape", "Rectangle 8,8,34,34 | StrokeWidth 8 | StrokeLineJoin Round | Stroke Color 0,0,0,160"}},
    {{"Shape", "Rectangle 8,8,34,34 | StrokeWidth 8 | StrokeLineJoin Bevel | Stroke Color 0,0,0,160"}},
    {{"Shape", "Path Spike | StrokeWidth 6 | StrokeLineJoin Miter,3"}, {"Spike", "5,10 | LineTo 42,25 | LineTo 5,40"}},
    {{"Shape", "Path Spike | StrokeWidth 6 | StrokeLineJoin MiterOrBevel,3"},
        {"Spike", "5,10 | LineTo 42,25 | LineTo 5,40"}},
    {{"Shape", "Rectangle 10,15,30,20 | Rotate 30 | StrokeWidth 2"},
        {"Shape2", "Rectangle 10,15,30,20 | Rotate 30,0,0 | Fill Color 255,0,0,90"}},
    {{"Shape", "Rectangle 15,15,20,20 | Scale 1.5,0.5 | StrokeWidth 4"},
        {"Shape2", "Rectangle 15,25,10,10 | Scale 2,2,0,0 | Fill Color 0,200,0,120"}},
    {{"Shape", "Rectangle 10,10,30,30 | Skew 20,0 | Fill Color 60,120,200"},
        {"Shape2", "Rectangle 20,20,10,10 | Skew 0,30"}},
    {{"Shape", "Rectangle 0,20,20,10 | Offset 20,0 | Rotate 90"},
        {"Shape2",
            "Rectangle 0,20,20,10 | Offset 20,0 | Rotate 90 | TransformOrder Offset,Rotate | Fill Color 255,0,0,120"}},
    {{"Shape", "Rectangle 0,0,50,50 | Fill LinearGradient G | StrokeWidth 0"}, {"G", "0 | 255,0,0 ; 0 | 0,0,255 ; 1"}},
    {{"Shape", "Rectangle 0,0,50,50 | Fill LinearGradient G | StrokeWidth 0"},
        {"G", "90 | 255,0,0 ; 0.0 | 255,255,255,0 ; 0.5 | 0,0,255 ; 1.0"}},
    {{"Shape", "Rectangle 0,0,50,30,10 | Fill LinearGradient G | StrokeWidth 0"},
        {"G", "235 | 34C599 ; 0.0 | 514A9D ; 1.0"}},
    {{"Shape", "Rectangle 0,0,50,50 | Fill LinearGradient1 G | StrokeWidth 0"},
        {"G", "180 | 0,0,0 ; 0 | 255,255,255 ; 1"}},
    {{"Shape", "Rectangle 0,0,50,50 | Fill LinearGradient G | StrokeWidth 0"},
        {"G", "180 | 255,0,0 ; 0.5 | 0,0,255 ; 0.5 | 0,255,0 ; 1.5"}},
    {{"Shape", "Ellipse 25,25,25 | Fill RadialGradient G | StrokeWidth 0"},
        {"G", "0,0 | 255,255,255 ; 0 | 20,60,160 ; 1"}},
    {{"Shape", "Ellipse 25,25,25 | Fill RadialGradient G | StrokeWidth 0"},
        {"G", "5,5,-14,-14,25,25 | 255,255,255 ; 0 | 20,60,160 ; 1"}},
    {{"Shape", "Rectangle 0,10,50,30 | Fill RadialGradient1 G | Rotate 45"},
        {"G", "0,0,0,0,25,10 | 255,255,0 ; 0 | 255,0,0,0 ; 1"}},
    {{"Shape", "Ellipse 25,25,20 | Fill Color 0,0,0,0 | StrokeWidth 8 | Stroke LinearGradient G"},
        {"G", "270 | 0,255,255 ; 0 | 255,0,255 ; 1"}},
};

TEST(ShapeSheet, drawsEveryKind) {
    EXPECT_TRUE(matchesGolden(sheet(Kinds, 2), "OstrelEngine/Meters/Goldens/full-shape-kinds.png", 2));
}

TEST(ShapeSheet, drawsEveryModifier) {
    EXPECT_TRUE(matchesGolden(sheet(Modifiers, 2), "OstrelEngine/Meters/Goldens/full-shape-modifiers.png", 2));
}

} // namespace
} // namespace Ostrel
