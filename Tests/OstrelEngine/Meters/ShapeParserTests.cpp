#include "OstrelEngine/Meters/ShapeParser.h"

#include <gtest/gtest.h>

namespace Ostrel {

namespace {

Options optionsOf(std::initializer_list<std::pair<const char*, const char*>> pairs) {
    Options options;
    for (const auto& [key, value] : pairs)
        options.set(key, value);
    return options;
}

} // namespace

TEST(ShapeParser, readsRectanglesAndEllipses) {
    const auto box = ShapeParser::parseShape("rectangle 0, (1+1) ,100,50,8 | Fill Color 255,0,0 | Stroke Color 0,0,0");
    ASSERT_TRUE(box);
    EXPECT_EQ(box->rect, (Rect{0, 2, 100, 50}));
    EXPECT_EQ(box->cornerRadius, 8);
    EXPECT_EQ(box->fillColor, (Color{1, 0, 0, 1}));
    EXPECT_TRUE(box->isStroked());
    EXPECT_EQ(box->strokeWidth, 1);

    const auto circle = ShapeParser::parseShape("| Ellipse 10,x,5");
    ASSERT_TRUE(circle);
    EXPECT_EQ(circle->rect, (Rect{5, -5, 10, 10})) << "an unreadable number is 0";
    EXPECT_FALSE(circle->fillColor);
    EXPECT_EQ(ShapeParser::parseShape("Ellipse10,10,5,2")->rect, (Rect{5, 8, 10, 4}));
}

TEST(ShapeParser, letsLaterModifiersWin) {
    const auto shape = [](const char* modifiers) {
        return *ShapeParser::parseShape(std::string("Rectangle 0,0,1,1|Stroke Color 0,0,0|") + modifiers);
    };
    EXPECT_EQ(shape("StrokeWidth 2").strokeWidth, 2);
    EXPECT_EQ(shape("stroke width 3").strokeWidth, 3);
    EXPECT_FALSE(shape("StrokeWidth 0").isStroked());
    EXPECT_FALSE(shape("Stroke  Width 2").isStroked()) << "two blanks are recognised but not removed";
    EXPECT_FALSE(shape("Fill Color 1,2,3 | Fill Color red").fillColor);
    EXPECT_EQ(shape("Rotate 20 | FILL COLOR0,0,255").fillColor, (Color{0, 0, 1, 1}));
}

TEST(ShapeParser, dropsWhatItDoesNotKnow) {
    for (const auto* text : {"", " | ", "Rectangle", "rectangle 0,0,10", "Ellipse 1,2", "Line 0,0,1,1",
             "Fill Color 1,2,3 | Rectangle 0,0,1,1"})
        EXPECT_FALSE(ShapeParser::parseShape(text)) << text;
}

TEST(ShapeParser, readsTwentyShapesAcrossGaps) {
    EXPECT_EQ(ShapeParser::bounds(ShapeParser::parseShapes(
                  optionsOf({{"Shape", "Rectangle 0,0,10,10 | Stroke Color 0,0,0|StrokeWidth 9"}, {"Shape3", "nothing"},
                      {"SHAPE20", "Rectangle 20,20,10,10"}, {"Shape21", "Rectangle 0,0,99,99"}}))),
        (Rect{0, 0, 30, 30}));
    EXPECT_EQ(
        ShapeParser::bounds(ShapeParser::parseShapes(optionsOf({{"Shape1", "Rectangle 0,0,10,10"}}))), std::nullopt);
}

} // namespace Ostrel
