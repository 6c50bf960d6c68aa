#include "OstrelEngine/Host/PictureDifference.h"
#include "OstrelEngine/Host/WidgetCanvas.h"
#include "OstrelEngine/Meters/Full/FullMeterFixture.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <QImage>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace Ostrel {
namespace {

struct Choice {
    const char* key;
    std::vector<const char*> values;
};

struct Kind {
    const char* type;
    std::vector<Choice> choices;
};

const std::vector<Choice> Common = {
    {"W", {"40", "53", "7", ""}},
    {"H", {"30", "21", "64", ""}},
    {"MeasureName", {"M", ""}},
    {"SolidColor", {"", "", "40,80,120,90", "200,0,0"}},
    {"SolidColor2", {"", "", "", "0,200,90,120"}},
    {"GradientAngle", {"0", "33", "90"}},
    {"BevelType", {"0", "0", "1", "2"}},
    {"Padding", {"", "", "3,1,4,2"}},
    {"AntiAlias", {"", "0", "1"}},
    {"TransformationMatrix", {"", "", "", "0.9;0.3;-0.3;0.9;10;-8", "-1;0;0;1;120;0", "1;0;0;1;3;4", "1;2;2;4;0;0"}},
};

const std::vector<Kind> Kinds = {
    {"Bar",
        {{"BarColor", {"255,0,0", "0,90,200,100"}}, {"BarOrientation", {"Vertical", "Horizontal"}},
            {"Flip", {"0", "1"}}}},
    {"Roundline",
        {{"StartAngle", {"0", "4.7"}}, {"RotationAngle", {"6.2832", "-3", "1"}}, {"LineStart", {"0", "10", "-5"}},
            {"LineLength", {"20", "31"}}, {"LineWidth", {"1", "3.5"}}, {"Solid", {"0", "1"}},
            {"ControlLength", {"0", "1"}}, {"LengthShift", {"9"}}}},
    {"Line",
        {{"MeasureName2", {"N", ""}}, {"LineCount", {"1", "2"}}, {"LineWidth", {"1", "2", "5"}},
            {"LineColor2", {"255,0,0,128"}}, {"AutoScale", {"0", "1"}}, {"GraphStart", {"Left", "Right"}},
            {"GraphOrientation", {"Vertical", "Horizontal"}}, {"Flip", {"0", "1"}}, {"HorizontalLines", {"0", "1"}}}},
    {"Histogram",
        {{"MeasureName2", {"N", ""}}, {"AutoScale", {"0", "1"}}, {"GraphStart", {"Left", "Right"}},
            {"GraphOrientation", {"Vertical", "Horizontal"}}, {"Flip", {"0", "1"}}}},
    {"Shape",
        {{"Shape",
             {"Rectangle 3,3,30,20,5 | Fill LinearGradient G", "Ellipse 20,20,17,9 | Rotate 30 | StrokeWidth 3",
                 "Rectangle 0,0,9,9 | StrokeWidth 0"}},
            {"Shape2",
                {"", "Line 1,1,40,33 | StrokeWidth 4 | StrokeEndCap Triangle",
                    "Line 0.5,30,50,30.5 | StrokeDashes 2,1"}},
            {"Shape3", {"", "Combine Shape | XOR Shape2"}}, {"G", {"30 | 255,0,0 ; 0 | 0,0,255,90 ; 1"}}}},
    {"String",
        {{"Text", {"%1 and %2", "fixed", "A#CRLF#%1"}}, {"FontSize", {"7", "11.5", "20"}}, {"Angle", {"", "", "0.6"}},
            {"StringEffect", {"", "Shadow", "Border"}}, {"StringAlign", {"", "CenterCenter", "RightBottom"}},
            {"ClipString", {"0", "1", "2"}},
            {"InlineSetting", {"", "Shadow | 3 | -2 | 2 | 200,0,0", "GradientColor | 0 | 255,0,0;0 | 0,0,255;1"}},
            {"InlinePattern", {"", "\\d+"}}, {"InlineSetting2", {"", "Underline", "Size | 15"}},
            {"FontColor", {"", "255,255,255,160"}}}},
    {"Image",
        {{"ImageName", {"picture", "none"}}, {"ImagePath", {"."}}, {"ImageTint", {"", "255,90,0,200"}},
            {"ImageRotate", {"", "33"}}, {"ImageCrop", {"", "3,2,20,10"}}, {"PreserveAspectRatio", {"", "1", "2"}},
            {"Tile", {"", "", "1"}}, {"ScaleMargins", {"", "3,3,3,3"}}, {"MaskImageName", {"", "", "picture"}},
            {"MaskImagePath", {"."}}}},
    {"Rotator",
        {{"ImageName", {"picture"}}, {"ImagePath", {"."}}, {"OffsetX", {"0", "13"}}, {"OffsetY", {"0", "8.5"}},
            {"StartAngle", {"0", "1.2"}}, {"RotationAngle", {"", "-3"}}}},
    {"Bitmap",
        {{"BitmapImage", {"picture"}}, {"ImagePath", {"."}}, {"BitmapFrames", {"3", "10"}},
            {"BitmapExtend", {"0", "1"}}, {"BitmapSeparation", {"-2", "3"}}, {"BitmapTransitionFrames", {"0", "1"}}}},
};

/// A folder with the picture that meters name.
const std::string& pictureFolder() {
    static const TemporaryFolder folder;
    static const std::string path = [] {
        QImage picture(30, 18, QImage::Format_ARGB32);
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                picture.setPixelColor(x, y, QColor(x * 8, 255 - y * 9, 90, 255 - x * 6));
        picture.save(QString::fromStdString(folder.path() + "/picture.png"));
        return folder.path();
    }();
    return path;
}

/// Meters of every kind that change options, values, places and containers at random.
class Scene {
public:
    explicit Scene(unsigned seed)
        : random_(seed) {
        for (const auto& kind : Kinds) {
            for (int i = 0; i < 2; ++i) {
                auto meter = workshop_.make(kind.type, {});
                meters_.push_back({meter, &kind});
                for (const auto& choice : Common)
                    choose(*meter, choice);
                for (const auto& choice : kind.choices)
                    choose(*meter, choice);
                move(*meter);
            }
        }
        for (auto& [meter, kind] : meters_)
            update(*meter);
    }

    void change() {
        for (auto& [meter, kind] : meters_) {
            switch (below(7)) {
            case 0:
                choose(*meter, kind->choices[static_cast<std::size_t>(below(static_cast<int>(kind->choices.size())))]);
                break;
            case 1:
                choose(*meter, Common[static_cast<std::size_t>(below(static_cast<int>(Common.size())))]);
                break;
            case 2:
                if (below(4) == 0)
                    move(*meter);
                break;
            case 3:
                if (below(4) == 0)
                    meter->setContainer(
                        below(2) ? std::weak_ptr<FullMeter>() : meters_[static_cast<std::size_t>(below(10))].meter);
                break;
            default:
                break;
            }
            if (below(5) == 0)
                meter->advance();
            if (below(3) != 0)
                update(*meter);
        }
    }

    std::vector<Drawable> drawables() const {
        std::vector<Drawable> result;
        for (const auto& [meter, kind] : meters_)
            result.push_back({meter, {}});
        return result;
    }

private:
    struct Item {
        std::shared_ptr<FullMeter> meter;
        const Kind* kind;
    };

    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
    void choose(FullMeter& meter, const Choice& choice) {
        const std::string value
            = choice.values[static_cast<std::size_t>(below(static_cast<int>(choice.values.size())))];
        meter.setOption(choice.key, value == "." ? pictureFolder() : value);
    }
    void move(FullMeter& meter) {
        meter.setOption("X", std::to_string(below(90) - 10));
        meter.setOption("Y", std::to_string(below(70) - 10));
    }
    void update(FullMeter& meter) {
        FullMeterWorkshop::update(meter, {numberValue(below(101)), numberValue(below(101))});
    }

    std::mt19937 random_;
    FullMeterWorkshop workshop_;
    std::vector<Item> meters_;
};

TEST(FullMeterRepaint, givesThePixelsOfAFullPaint) {
    const Size size{120, 90};
    for (const double scale : {1.0, 2.0, 1.5}) {
        for (unsigned seed = 0; seed < 12; ++seed) {
            Scene scene(seed);
            WidgetCanvas canvas;
            canvas.setSize(size);
            QImage picture = transparentCanvas(size.width, size.height, scale);
            for (int step = 0; step < 30; ++step) {
                const auto drawables = scene.drawables();
                canvas.setDrawables(drawables);
                canvas.repaint(picture, scale);
                WidgetCanvas anew;
                anew.setSize(size);
                anew.setDrawables(drawables);
                QImage expected = transparentCanvas(size.width, size.height, scale);
                anew.repaint(expected, scale);
                ASSERT_EQ(pictureDifference(picture, expected), "")
                    << "scale " << scale << " seed " << seed << " step " << step;
                scene.change();
            }
        }
    }
}

} // namespace
} // namespace Ostrel
