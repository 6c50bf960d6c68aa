// Shapes, bars, hands and graphs of the full dialect against the bare QPainter calls that give the same picture, in
// alternating batches. "ratio" is ours over theirs, by medians.

#include "Comparison.h"
#include "OstrelDialect/PackFolders.h"
#include "OstrelEngine/Meters/Full/FullMeterFactory.h"
#include "Support/FakePlatform.h"

#include <benchmark/benchmark.h>

#include <QImage>
#include <QPainter>
#include <QPolygonF>

#include <cmath>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

namespace Ostrel {

namespace {

constexpr int Repeats = 50;

class Workshop {
public:
    std::shared_ptr<FullMeter> make(
        const char* type, std::initializer_list<std::pair<const char*, const char*>> pairs) {
        Options options;
        for (const auto& [key, value] : pairs)
            options.set(key, value);
        MeterDefinition definition;
        definition.meterType = type;
        auto meter = FullMeterFactory::create(definition, options, context_);
        update(*meter, 0);
        return meter;
    }
    static void update(FullMeter& meter, double number) {
        const MeasureValue value{number, "", false, 0, 100};
        meter.update({&value, 1});
        meter.setFrame({0, 0, meter.boxSize().width, meter.boxSize().height});
    }

private:
    FakePlatform fake_;
    PackFolders folders_;
    FullMeterContext context_{folders_, fake_.platform, 100};
};

QImage canvas(int width = 600, int height = 100) {
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    return image;
}

/// Both draw again and again on black; fails when the pictures differ by more than smoothing does.
template <typename Theirs> void compareDrawing(benchmark::State& state, FullMeter& meter, const Theirs& theirs) {
    QImage ourImage = canvas();
    QImage theirImage = canvas();
    const auto ours = [&](QPainter& painter) { meter.draw(painter, {}); };
    const auto timed = [](QImage& image, const auto& draw) {
        return [&image, &draw] {
            QPainter painter(&image);
            return secondsOf([&] {
                for (int i = 0; i < Repeats; ++i)
                    draw(painter);
            });
        };
    };
    int different = 0;
    {
        QPainter a(&ourImage);
        QPainter b(&theirImage);
        ours(a);
        theirs(b);
    }
    for (int y = 0; y < ourImage.height(); ++y)
        for (int x = 0; x < ourImage.width(); ++x)
            different += std::abs(qGreen(ourImage.pixel(x, y)) - qGreen(theirImage.pixel(x, y))) > 40;
    if (different > 8)
        state.SkipWithError(("the pictures differ in " + std::to_string(different) + " pixels").c_str());
    compare(state, timed(ourImage, ours), timed(theirImage, theirs), 4);
}

void shapes(benchmark::State& state) {
    Workshop workshop;
    const auto meter = workshop.make("Shape",
        {{"Shape", "Rectangle 5,5,150,80,12 | Fill Color 40,120,200 | StrokeWidth 2 | Stroke Color 255,255,255"},
            {"Shape2", "Ellipse 230,45,50,35 | Fill Color 200,120,40,150 | StrokeWidth 3"},
            {"Shape3", "Line 300,10,590,80 | StrokeWidth 5 | Stroke Color 0,255,0"},
            {"Shape4", "Rectangle 300,60,80,30 | Fill Color 255,255,0 | StrokeWidth 0"}});
    compareDrawing(state, *meter, [](QPainter& painter) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Qt::white, 2));
        painter.setBrush(QColor(40, 120, 200));
        painter.drawRoundedRect(QRectF(5, 5, 150, 80), 12, 12);
        painter.setPen(QPen(Qt::black, 3));
        painter.setBrush(QColor(200, 120, 40, 150));
        painter.drawEllipse(QPointF(230, 45), 50, 35);
        painter.setPen(QPen(Qt::green, 5, Qt::SolidLine, Qt::FlatCap));
        painter.drawLine(QPointF(300, 10), QPointF(590, 80));
        painter.fillRect(QRectF(300, 60, 80, 30), Qt::yellow);
    });
}

void gradientShape(benchmark::State& state) {
    Workshop workshop;
    const auto meter = workshop.make("Shape",
        {{"Shape", "Rectangle 0,0,600,100,20 | Fill LinearGradient G | StrokeWidth 0"},
            {"G", "180 | 255,0,0 ; 0 | 0,255,255 ; 1"}});
    compareDrawing(state, *meter, [](QPainter& painter) {
        painter.setRenderHint(QPainter::Antialiasing);
        QLinearGradient gradient(0, 50, 600, 50);
        gradient.setColorAt(0, QColor(255, 0, 0));
        gradient.setColorAt(1, QColor(0, 255, 255));
        painter.setPen(Qt::NoPen);
        painter.setBrush(gradient);
        painter.drawRoundedRect(QRectF(0, 0, 600, 100), 20, 20);
    });
}

void bar(benchmark::State& state) {
    Workshop workshop;
    const auto meter = workshop.make("Bar",
        {{"W", "400"}, {"H", "12"}, {"BarOrientation", "Horizontal"}, {"MeasureName", "M"},
            {"SolidColor", "60,60,60"}});
    Workshop::update(*meter, 60);
    compareDrawing(state, *meter, [](QPainter& painter) {
        painter.fillRect(QRectF(0, 0, 400, 12), QColor(60, 60, 60));
        painter.fillRect(QRectF(0, 0, 240, 12), QColor(0, 128, 0));
    });
}

void hand(benchmark::State& state) {
    Workshop workshop;
    const auto meter = workshop.make("Roundline",
        {{"W", "100"}, {"H", "100"}, {"LineLength", "48"}, {"LineWidth", "4"}, {"AntiAlias", "1"},
            {"MeasureName", "M"}});
    Workshop::update(*meter, 30);
    compareDrawing(state, *meter, [](QPainter& painter) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Qt::white, 4, Qt::SolidLine, Qt::FlatCap));
        const double angle = 0.3 * 2 * M_PI;
        painter.drawLine(QPointF(50, 50), QPointF(50 + 48 * std::cos(angle), 50 + 48 * std::sin(angle)));
    });
}

void sector(benchmark::State& state) {
    Workshop workshop;
    const auto meter = workshop.make("Roundline",
        {{"W", "100"}, {"H", "100"}, {"LineLength", "48"}, {"Solid", "1"}, {"AntiAlias", "1"}, {"MeasureName", "M"}});
    Workshop::update(*meter, 30);
    compareDrawing(state, *meter, [](QPainter& painter) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        painter.drawPie(QRectF(2, 2, 96, 96), 0, -108 * 16);
    });
}

/// A tick of a graph of 600 points against the drawing of one column. What is copied to the canvas is cut off here: it
/// is a copy, whatever was drawn.
template <typename DrawColumn> void graph(benchmark::State& state, FullMeter& meter, const DrawColumn& drawColumn) {
    QImage aside = canvas(1, 1);
    QImage columns = canvas();
    double number = 0;
    const auto ours = [&] {
        return secondsOf([&] {
            for (int i = 0; i < Repeats; ++i) {
                number = number > 90 ? 10 : number + 7;
                Workshop::update(meter, number);
                QPainter painter(&aside);
                meter.draw(painter, {});
            }
        });
    };
    const auto theirs = [&] {
        return secondsOf([&] {
            for (int i = 0; i < Repeats; ++i) {
                number = number > 90 ? 10 : number + 7;
                QPainter outer(&aside);
                QPainter painter(&columns);
                drawColumn(painter, number);
            }
        });
    };
    compare(state, ours, theirs, 4);
}

void histogramTick(benchmark::State& state) {
    Workshop workshop;
    const auto meter = workshop.make("Histogram", {{"W", "600"}, {"H", "100"}, {"MeasureName", "M"}});
    graph(state, *meter, [](QPainter& painter, double number) {
        painter.setClipRect(QRectF(300, 0, 1, 100));
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(QRectF(300, 0, 1, 100), Qt::transparent);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.fillRect(QRectF(300, 100 - number, 1, number), QColor(0, 128, 0));
    });
}

void lineTick(benchmark::State& state) {
    Workshop workshop;
    const auto meter = workshop.make("Line", {{"W", "600"}, {"H", "100"}, {"MeasureName", "M"}, {"AntiAlias", "1"}});
    graph(state, *meter, [](QPainter& painter, double number) {
        painter.setClipRect(QRectF(300, 0, 1, 100));
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(QRectF(300, 0, 1, 100), Qt::transparent);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Qt::white, 1, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin));
        painter.drawPolyline(QPolygonF({{299.5, 100 - number}, {300.5, 93 - number}, {301.5, 90 - number}}));
    });
}

/// What reaches the canvas at a tick, against the copy of such a picture.
void graphCopy(benchmark::State& state) {
    Workshop workshop;
    const auto meter = workshop.make("Histogram", {{"W", "600"}, {"H", "100"}, {"MeasureName", "M"}});
    const QImage picture(600, 100, QImage::Format_ARGB32_Premultiplied);
    QImage kept = picture;
    kept.fill(Qt::transparent);
    compareDrawing(state, *meter, [&](QPainter& painter) { painter.drawImage(0, 0, kept); });
}

BENCHMARK(shapes)->UseManualTime();
BENCHMARK(gradientShape)->UseManualTime();
BENCHMARK(bar)->UseManualTime();
BENCHMARK(hand)->UseManualTime();
BENCHMARK(sector)->UseManualTime();
BENCHMARK(histogramTick)->UseManualTime();
BENCHMARK(lineTick)->UseManualTime();
BENCHMARK(graphCopy)->UseManualTime();

} // namespace

} // namespace Ostrel
