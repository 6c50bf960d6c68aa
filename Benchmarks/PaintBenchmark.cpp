// 20 strings and 5 bars on 400x300 against bare QPainter::drawText of the same texts with a cached font, in alternating
// batches. "ratio" is ours over drawText, by medians.

#include "OstrelEngine/Meters/MeterFactory.h"
#include "Support/FakePlatform.h"

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

namespace Ostrel {

namespace {

constexpr int Width = 400;
constexpr int Height = 300;
constexpr int Rows = 20;
constexpr int RowHeight = 14;
constexpr int Bars = 5;
constexpr int TextSets = 64;
constexpr int Batch = 16;
constexpr int Batches = 200;

/// The kind of text that a system monitor shows.
std::string rowText(int set, int row) {
    return "Value " + std::to_string(row) + " is " + std::to_string(set * 7 + row) + '.' + std::to_string(row % 10)
        + " MiB of " + std::to_string(24064 + set) + " (" + std::to_string((set + row) % 100) + " %)";
}

QImage canvas() {
    QImage image(Width, Height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    return image;
}

/// Whether each of the rows has something bright in it.
bool isPainted(const QImage& image, int rows) {
    for (int row = 0; row < rows; ++row) {
        const QImage strip = image.copy(8, 4 + row * RowHeight, 380, RowHeight - 2);
        bool isBright = false;
        for (int y = 0; y < strip.height(); ++y)
            for (int x = 0; x < strip.width(); ++x)
                isBright = isBright || qGray(strip.pixel(x, y)) > 200;
        if (!isBright)
            return false;
    }
    return true;
}

/// What a program does that draws the texts itself.
class BareDrawing {
public:
    BareDrawing()
        : image_(canvas()) {
        font_.setPixelSize(11);
        for (int set = 0; set < TextSets; ++set)
            for (int row = 0; row < Rows; ++row)
                texts_.push_back(QString::fromStdString(rowText(set, row)));
    }

    void paint(int set) {
        QPainter painter(&image_);
        painter.fillRect(image_.rect(), QColor(16, 24, 32));
        painter.setFont(font_);
        painter.setPen(Qt::white);
        for (int row = 0; row < Rows; ++row)
            painter.drawText(QPointF(8, 14 + row * RowHeight), texts_[set * Rows + row]);
        for (int bar = 0; bar < Bars; ++bar)
            painter.fillRect(QRectF(10, 292 - bar * 60, 40 + (set * 5 + bar * 40) % 340, 6), Qt::white);
    }

    const QImage& image() const { return image_; }

private:
    QImage image_;
    QFont font_{"DejaVu Sans Mono"};
    QStringList texts_;
};

/// What our canvas does with the publication of a skin.
class MeterDrawing {
public:
    MeterDrawing()
        : image_(canvas()) {
        for (int row = 0; row < Rows; ++row)
            add("String", {{"FontFace", "DejaVu Sans Mono"}, {"FontSize", "11"}, {"Text", "%1"}},
                {8, 2.0 + row * RowHeight, 380, RowHeight});
        for (int bar = 0; bar < Bars; ++bar)
            add("Bar", {{"BarColor", "255,255,255"}}, {10, 292.0 - bar * 60, 380, 6});
        for (int set = 0; set < TextSets; ++set)
            for (int row = 0; row < Rows; ++row)
                texts_.push_back(rowText(set, row));
    }

    /// The first rows and bars have changed; what lies behind the others stays.
    void paint(int set, int rows, int bars) {
        QPainter painter(&image_);
        painter.fillRect(0, 0, Width, rows == Rows ? Height : rows * RowHeight, QColor(16, 24, 32));
        MeasureValue value;
        for (int row = 0; row < rows; ++row) {
            value.stringValue = texts_[static_cast<std::size_t>(set * Rows + row)];
            show(painter, row, value);
        }
        value.stringValue.clear();
        for (int bar = 0; bar < bars; ++bar) {
            value.numericValue = (set * 5 + bar * 40) % 100;
            show(painter, Rows + bar, value);
        }
    }

    const QImage& image() const { return image_; }

private:
    void show(QPainter& painter, int index, const MeasureValue& value) {
        auto& meter = *meters_[static_cast<std::size_t>(index)];
        const MeasureValues values(&value, 1);
        if (meter.updateAppearance(values))
            benchmark::DoNotOptimize(meter.paintRect(values));
        meter.draw(painter, values);
    }

    void add(const char* type, std::initializer_list<std::pair<const char*, const char*>> pairs, MeterFrame frame) {
        MeterDefinition definition;
        definition.meterType = type;
        Options options;
        for (const auto& [key, value] : pairs)
            options.set(key, value);
        meters_.push_back(MeterFactory::create(definition, options, "/skin.ini", platform_.platform));
        meters_.back()->setFrame(frame);
    }

    FakePlatform platform_;
    QImage image_;
    std::vector<std::shared_ptr<MeterRenderer>> meters_;
    std::vector<std::string> texts_;
};

/// The processor's time, which other programs do not add to.
double threadSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

template <typename Body> double seconds(Body body) {
    const double start = threadSeconds();
    for (int set = 0; set < Batch; ++set)
        body(set % TextSets);
    return (threadSeconds() - start) / Batch;
}

double median(std::vector<double>& values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Lives as long as the program: fonts need it.
void startApplication() {
    static int count = 1;
    static char name[] = "PaintBenchmark";
    static char* arguments[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QGuiApplication application(count, arguments);
}

void paintAgainstDrawText(benchmark::State& state) {
    startApplication();
    const auto rows = static_cast<int>(state.range(0));
    const auto bars = static_cast<int>(state.range(1));
    BareDrawing bare;
    MeterDrawing meters;
    std::vector<double> ours;
    std::vector<double> theirs;
    for (auto _ : state) {
        theirs.push_back(seconds([&](int set) { bare.paint(set); }));
        ours.push_back(seconds([&](int set) { meters.paint(set, rows, bars); }));
        state.SetIterationTime(ours.back());
    }
    if (!isPainted(bare.image(), rows) || !isPainted(meters.image(), rows))
        state.SkipWithError("nothing was painted");
    const double oursMedian = median(ours);
    const double theirsMedian = median(theirs);
    state.counters["ours_us"] = oursMedian * 1e6;
    state.counters["drawText_us"] = theirsMedian * 1e6;
    state.counters["ratio"] = oursMedian / theirsMedian;
}
BENCHMARK(paintAgainstDrawText)
    ->ArgNames({"rows", "bars"})
    ->Args({Rows, Bars})
    ->Args({3, 1})
    ->Iterations(Batches)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

} // namespace

} // namespace Ostrel
