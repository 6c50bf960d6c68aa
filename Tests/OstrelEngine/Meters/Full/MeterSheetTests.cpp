#include "OstrelEngine/Meters/Full/FullMeterFixture.h"
#include "Support/GoldenImage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace Ostrel {
namespace {

struct Cell {
    const char* type;
    std::vector<std::pair<const char*, const char*>> options;
    /// One update with each; the first measure's and the second's number of 100.
    std::vector<std::pair<double, double>> values = {{0, 0}};
    /// Drawn through this one, if any.
    std::vector<std::pair<const char*, const char*>> container = {};
};

Options optionsOfCell(const std::vector<std::pair<const char*, const char*>>& pairs, int column, int row) {
    constexpr int Side = 60;
    Options options;
    for (const auto& [key, value] : pairs)
        options.set(key, value);
    const auto at = [&](const char* key, int place) {
        const auto* offset = options.find(key);
        options.set(key, std::to_string(place * Side + 5 + (offset ? std::stoi(*offset) : 0)));
    };
    at("X", column);
    at("Y", row);
    return options;
}

QImage sheet(const std::vector<Cell>& cells, double scale) {
    constexpr int PerRow = 10;
    const auto rows = (static_cast<int>(cells.size()) + PerRow - 1) / PerRow;
    QImage picture = transparentCanvas(60 * PerRow, 60 * rows, scale);
    picture.fill(QColor(120, 130, 140));
    FullMeterWorkshop workshop;
    QPainter painter(&picture);
    painter.scale(scale, scale);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const auto& cell = cells[i];
        const int column = static_cast<int>(i) % PerRow;
        const int row = static_cast<int>(i) / PerRow;
        const auto meter = workshop.make(cell.type, optionsOfCell(cell.options, column, row));
        for (const auto& [first, second] : cell.values)
            FullMeterWorkshop::update(*meter, {numberValue(first), numberValue(second)});
        std::shared_ptr<FullMeter> container;
        if (!cell.container.empty()) {
            container = workshop.make("Shape", optionsOfCell(cell.container, column, row));
            FullMeterWorkshop::update(*container, {});
            meter->setContainer(container);
        }
        meter->draw(painter, {});
    }
    return picture;
}

/// Waves, so that old values differ from new ones.
std::vector<std::pair<double, double>> waves(int count) {
    std::vector<std::pair<double, double>> values;
    for (int i = 0; i < count; ++i)
        values.emplace_back(50 + 45 * std::sin(i / 6.0), 2.0 * i / count * 50);
    return values;
}

const std::vector<Cell> Meters = {
    {"Bar", {{"W", "20"}, {"H", "50"}, {"MeasureName", "M"}, {"SolidColor", "0,0,0,90"}}, {{70, 0}}},
    {"Bar",
        {{"W", "20"}, {"H", "50"}, {"MeasureName", "M"}, {"SolidColor", "0,0,0,90"}, {"Flip", "1"},
            {"BarColor", "FF8000"}},
        {{70, 0}}},
    {"Bar",
        {{"W", "50"}, {"H", "20"}, {"MeasureName", "M"}, {"SolidColor", "0,0,0,90"}, {"BarOrientation", "horizontal"}},
        {{30, 0}}},
    {"Bar",
        {{"W", "40"}, {"H", "10"}, {"Padding", "5,10,5,3"}, {"MeasureName", "M"}, {"SolidColor", "0,0,0,90"},
            {"BarOrientation", "Horizontal"}, {"Flip", "1"}, {"BevelType", "1"}},
        {{30, 0}}},
    {"Bar", {{"W", "50"}, {"H", "50"}, {"SolidColor", "200,40,40"}, {"BevelType", "2"}, {"BevelColor2", "255,255,0"}}},
    {"Bar", {{"W", "50"}, {"H", "50"}, {"SolidColor", "255,0,0"}, {"SolidColor2", "0,0,255"}}},
    {"Bar",
        {{"W", "50"}, {"H", "50"}, {"SolidColor", "255,0,0"}, {"SolidColor2", "0,0,255,0"}, {"GradientAngle", "60"}}},
    {"Bar",
        {{"W", "30"}, {"H", "30"}, {"MeasureName", "M"}, {"SolidColor", "0,0,0,90"}, {"AntiAlias", "1"},
            {"TransformationMatrix", "0.866;0.5;-0.5;0.866;80;-207"}},
        {{50, 0}}},
    {"Shape",
        {{"Shape", "Rectangle 0,0,50,50 | Fill LinearGradient G | StrokeWidth 0"},
            {"G", "180 | 255,0,0 ; 0 | 0,255,255 ; 1"}},
        {{0, 0}}, {{"Shape", "Ellipse 20,20,20 | Fill Color 0,0,0,200 | StrokeWidth 0"}, {"X", "5"}, {"Y", "5"}}},
    {"Bar", {{"W", "50"}, {"H", "50"}, {"SolidColor", "255,255,255"}, {"MeasureName", "M"}}, {{50, 0}},
        {{"Shape", "Rectangle 0,0,30,30,8"}, {"W", "28"}, {"H", "60"}, {"SolidColor", "0,0,0,60"}, {"X", "10"},
            {"Y", "5"}}},

    {"Roundline",
        {{"W", "50"}, {"H", "50"}, {"LineLength", "25"}, {"LineStart", "-6"}, {"LineWidth", "4"}, {"AntiAlias", "1"},
            {"StartAngle", "(3*PI/2)"}, {"MeasureName", "M"}, {"SolidColor", "0,0,0,60"}},
        {{15, 0}}},
    {"Roundline",
        {{"W", "50"}, {"H", "50"}, {"LineLength", "25"}, {"LineStart", "16"}, {"Solid", "1"}, {"AntiAlias", "1"},
            {"StartAngle", "2.356"}, {"RotationAngle", "4.712"}, {"LineColor", "255,180,0"}, {"MeasureName", "M"}},
        {{60, 0}}},
    {"Roundline",
        {{"W", "50"}, {"H", "50"}, {"LineLength", "24"}, {"Solid", "1"}, {"AntiAlias", "1"}, {"StartAngle", "(3*PI/2)"},
            {"RotationAngle", "-6.2832"}, {"LineColor", "0,0,0,150"}, {"MeasureName", "M"}},
        {{30, 0}}},
    {"Roundline",
        {{"W", "50"}, {"H", "50"}, {"LineLength", "24"}, {"LineStart", "12"}, {"Solid", "1"}, {"AntiAlias", "1"},
            {"LineColor", "0,0,0,150"}}},
    {"Roundline",
        {{"W", "50"}, {"H", "50"}, {"LineLength", "4"}, {"LineStart", "2"}, {"ControlAngle", "0"},
            {"ControlLength", "1"}, {"LengthShift", "20"}, {"ControlStart", "1"}, {"StartShift", "10"}, {"Solid", "1"},
            {"AntiAlias", "1"}, {"MeasureName", "M"}},
        {{50, 0}}},
    {"Roundline",
        {{"X", "25"}, {"Y", "25"}, {"LineLength", "25"}, {"LineWidth", "3"}, {"ValueReminder", "60"},
            {"StartAngle", "(3*PI/2)"}, {"MeasureName", "M"}},
        {{3615, 0}}},
    {"Roundline", {{"W", "50"}, {"H", "50"}, {"LineLength", "25"}, {"LineWidth", "1"}, {"MeasureName", "M"}}, {{7, 0}}},
    {"Unheard", {{"W", "50"}, {"H", "50"}, {"SolidColor", "255,0,0"}}},
    {"Bar", {{"W", "50"}, {"H", "50"}, {"SolidColor", "255,0,0"}, {"TransformationMatrix", "1;0;0;0;0;40"}}},
    {"Shape",
        {{"Shape", "Rectangle 5,5,30,20 | Fill LinearGradient G | StrokeWidth 3"},
            {"G", "0 | 255,0,0 ; 0 | 0,255,255 ; 1"}, {"TransformationMatrix", "-1;0;0;1;1150;10"}}},

    {"Histogram", {{"W", "50"}, {"H", "50"}, {"MeasureName", "M"}, {"MeasureName2", "N"}, {"SolidColor", "0,0,0,90"}},
        waves(70)},
    {"Histogram",
        {{"W", "50"}, {"H", "50"}, {"MeasureName", "M"}, {"SolidColor", "0,0,0,90"}, {"GraphStart", "Left"},
            {"PrimaryColor", "200,220,255"}},
        waves(30)},
    {"Histogram", {{"W", "50"}, {"H", "50"}, {"MeasureName", "M"}, {"SecondaryMeasureName", "N"}, {"Flip", "1"}},
        waves(65)},
    {"Histogram",
        {{"W", "50"}, {"H", "50"}, {"MeasureName", "M"}, {"GraphOrientation", "Horizontal"},
            {"SolidColor", "0,0,0,90"}},
        waves(40)},
    {"Histogram",
        {{"W", "50"}, {"H", "50"}, {"MeasureName", "M"}, {"AutoScale", "1"}, {"SolidColor", "0,0,0,90"},
            {"GraphOrientation", "Horizontal"}, {"GraphStart", "Left"}, {"Flip", "1"}},
        {{1, 0}, {2, 0}, {4, 0}, {8, 0}}},
    {"Line",
        {{"W", "50"}, {"H", "50"}, {"MeasureName", "M"}, {"MeasureName2", "N"}, {"LineCount", "2"},
            {"LineColor2", "255,200,0"}, {"AntiAlias", "1"}, {"SolidColor", "0,0,0,90"}, {"HorizontalLines", "1"},
            {"HorizontalLineColor", "255,255,255,60"}},
        waves(130)},
    {"Line",
        {{"W", "50"}, {"H", "50"}, {"MeasureName", "M"}, {"LineWidth", "3"}, {"GraphStart", "Left"},
            {"SolidColor", "0,0,0,90"}},
        waves(40)},
    {"Line",
        {{"W", "50"}, {"H", "50"}, {"MeasureName", "M"}, {"Scale", "0.5"}, {"Flip", "1"}, {"AntiAlias", "1"},
            {"GraphOrientation", "Horizontal"}, {"SolidColor", "0,0,0,90"}},
        waves(60)},
    {"Line", {{"W", "50"}, {"H", "50"}, {"MeasureName", "M"}, {"AutoScale", "1"}, {"SolidColor", "0,0,0,90"}},
        {{0, 0}, {8, 0}, {8, 0}, {1, 0}, {0, 0}, {4, 0}}},
    {"Line",
        {{"W", "40"}, {"H", "20"}, {"MeasureName", "M"}, {"LineWidth", "2"}, {"AntiAlias", "1"},
            {"TransformStroke", "Fixed"}, {"SolidColor", "0,0,0,90"}, {"TransformationMatrix", "1;0;0;2;0;-125"}},
        waves(40)},
};

TEST(MeterSheet, drawsBarsHandsGraphsAndWhatIsCommon) {
    for (const double scale : {1.0, 2.0}) {
        const std::string name = scale == 1 ? "full-meters.png" : "full-meters-2x.png";
        EXPECT_TRUE(matchesGolden(sheet(Meters, scale), "OstrelEngine/Meters/Goldens/" + name, 2));
    }
}

} // namespace
} // namespace Ostrel
