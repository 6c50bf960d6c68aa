// Meters of the full dialect against the bare calls that give the same pixels: texts against the text engine, pictures
// against QPainter. "ratio" is ours over theirs, by medians. The pixels are compared first.

#include "Comparison.h"
#include "Meters/Full/FullMeterFixture.h"
#include "OstrelEngine/Meters/Full/PictureOptions.h"
#include "OstrelEngine/Meters/Text/FontLibrary.h"
#include "OstrelEngine/Meters/Text/TextPainter.h"
#include "Support/TemporaryFolder.h"

#include <benchmark/benchmark.h>

#include <QImage>
#include <QPainter>

#include <memory>
#include <string>
#include <vector>

namespace Ostrel {

namespace {

constexpr int Width = 400;
constexpr int Height = 300;
constexpr int Rows = 20;

QImage blackCanvas() {
    QImage canvas(Width, Height, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::black);
    return canvas;
}

std::string rowText(int set, int row) {
    return "Value " + std::to_string(row) + " is " + std::to_string(set * 7 + row) + " MiB of 24064";
}

std::shared_ptr<Typeface> engineTypeface() {
    FontLookup::FamilyRequest request;
    request.name = "DejaVu Sans";
    return FontLibrary::shared().familyTypeface(request);
}

/// Runs both once on canvases of their own, then compares their time if the pixels are the same.
template <typename Ours, typename Theirs> void comparePainting(benchmark::State& state, Ours ours, Theirs theirs) {
    QImage ourCanvas = blackCanvas();
    QImage theirCanvas = blackCanvas();
    const auto paint = [](QImage& canvas, auto& draw, int run) {
        QPainter painter(&canvas);
        return secondsOf([&] { draw(painter, run); });
    };
    paint(ourCanvas, ours, 0);
    paint(theirCanvas, theirs, 0);
    if (ourCanvas != theirCanvas)
        return state.SkipWithError("the pixels differ");
    int ourRun = 0;
    int theirRun = 0;
    compare(
        state, [&] { return paint(ourCanvas, ours, ++ourRun); }, [&] { return paint(theirCanvas, theirs, ++theirRun); },
        16);
}

/// What the text engine does with the same rows, the layouts at hand.
void drawsTextAsTheEngineDoes(benchmark::State& state) {
    FullMeterWorkshop workshop;
    const auto typeface = engineTypeface();
    const TextSetting setting{{{}, typeface}, 12, 0};
    TextAppearance look;
    look.color = {1, 1, 1, 1};
    std::vector<std::shared_ptr<FullMeter>> meters;
    std::vector<TextLayout> layouts;
    for (int row = 0; row < Rows; ++row) {
        meters.push_back(workshop.place("String",
            {{"FontFace", "DejaVu Sans"}, {"FontSize", "9"}, {"FontColor", "FFFFFF"}, {"Text", "%1"}, {"X", "8"},
                {"Y", std::to_string(row * 14).c_str()}},
            {{0, rowText(0, row), true, 0, 100}}));
        layouts.push_back(TextLayouts::inLines(TextLayouts::preparedText(rowText(0, row)), setting, std::nullopt));
    }
    comparePainting(
        state,
        [&](QPainter& painter, int) {
            for (const auto& meter : meters)
                meter->draw(painter, {});
        },
        [&](QPainter& painter, int) {
            for (int row = 0; row < Rows; ++row)
                TextPainter::draw(painter, layouts[static_cast<std::size_t>(row)], 12, {8, row * 14.0, 300, 14}, look);
        });
}
BENCHMARK(drawsTextAsTheEngineDoes)->UseManualTime();

/// A text that is another at each update, against shaping and drawing it.
void setsTextAsTheEngineDoes(benchmark::State& state) {
    FullMeterWorkshop workshop;
    const auto typeface = engineTypeface();
    const TextSetting setting{{{}, typeface}, 12, 0};
    TextAppearance look;
    look.color = {1, 1, 1, 1};
    const auto meter = workshop.place("String",
        {{"FontFace", "DejaVu Sans"}, {"FontSize", "9"}, {"FontColor", "FFFFFF"}, {"Text", "%1"}, {"X", "8"}});
    std::vector<MeasureValue> values{{0, "", true, 0, 100}};
    comparePainting(
        state,
        [&](QPainter& painter, int run) {
            values[0].stringValue = rowText(run % 64, 3);
            FullMeterWorkshop::update(*meter, values);
            meter->draw(painter, {});
        },
        [&](QPainter& painter, int run) {
            const auto layout
                = TextLayouts::inLines(TextLayouts::preparedText(rowText(run % 64, 3)), setting, std::nullopt);
            TextPainter::draw(painter, layout, 12, {8, 0, 300, 14}, look);
        });
}
BENCHMARK(setsTextAsTheEngineDoes)->UseManualTime();

QImage checkered() {
    QImage picture(200, 160, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            picture.setPixelColor(x, y, QColor(x, y, 120, (x / 8 + y / 8) % 2 ? 255 : 120));
    return picture;
}

/// A cropped, tinted and turned picture costs no more than drawing the result.
void drawsPicturesAsQPainterDoes(benchmark::State& state) {
    const TemporaryFolder folder;
    const auto path = folder.path() + "/picture.png";
    checkered().save(QString::fromStdString(path));
    FullMeterWorkshop workshop;
    const OptionPairs options = {{"ImageName", path.c_str()}, {"ImageTint", "255,200,90,200"},
        {"ImageCrop", "10,10,150,120"}, {"ImageRotate", "20"}, {"X", "5"}, {"DynamicVariables", "1"}};
    const auto meter = workshop.place("Image", options);
    const QImage result = PictureOptions::parse(optionsOf(options)).applied(checkered());
    comparePainting(
        state, [&](QPainter& painter, int) { meter->draw(painter, {}); },
        [&](QPainter& painter, int) { painter.drawImage(5, 0, result); });
}
BENCHMARK(drawsPicturesAsQPainterDoes)->UseManualTime();

/// A hand that moves at each update.
void turnsAsQPainterDoes(benchmark::State& state) {
    const TemporaryFolder folder;
    const auto path = folder.path() + "/picture.png";
    checkered().save(QString::fromStdString(path));
    FullMeterWorkshop workshop;
    const auto meter = workshop.place(
        "Rotator", {{"ImageName", path.c_str()}, {"OffsetX", "20"}, {"OffsetY", "80"}, {"X", "200"}, {"Y", "150"}});
    const QImage picture = checkered();
    std::vector<MeasureValue> values{{0, "", false, 0, 100}};
    comparePainting(
        state,
        [&](QPainter& painter, int run) {
            values[0].numericValue = run * 7 % 100;
            FullMeterWorkshop::update(*meter, values);
            meter->draw(painter, {});
        },
        [&](QPainter& painter, int run) {
            const QTransform before = painter.transform();
            painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
            painter.translate(200, 150);
            painter.rotate(run * 7 % 100 * 3.6);
            painter.drawImage(QPointF(-20, -80), picture);
            painter.setTransform(before);
        });
}
BENCHMARK(turnsAsQPainterDoes)->UseManualTime();

} // namespace

} // namespace Ostrel
