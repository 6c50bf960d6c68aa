#include "OstrelEngine/Meters/Full/HistogramMeter.h"

#include "OstrelEngine/Meters/Full/DevicePicture.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Ostrel {

namespace {

struct Colors {
    QColor primary;
    QColor secondary;
    QColor both;

    friend bool operator==(const Colors&, const Colors&) = default;
};

} // namespace

struct HistogramMeter::State {
    Colors colors;
    int graphs = 0;
    /// What a full column stands for with AutoScale.
    double largest = 0;
};

HistogramMeter::HistogramMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context)
    : GraphMeter(definition, std::move(options), context)
    , state_(std::make_unique<State>()) { }

HistogramMeter::~HistogramMeter() = default;

void HistogramMeter::readOptions() {
    const Colors colors{toQColor(color("PrimaryColor"_key, {0, 128, 0, 255})),
        toQColor(color("SecondaryColor"_key, {255, 0, 0, 255})), toQColor(color("BothColor"_key, {255, 255, 0, 255}))};
    const bool hasSecond = !text("MeasureName2"_key, text("SecondaryMeasureName"_key)).empty();
    const int graphs = text("MeasureName"_key).empty() ? 0 : hasSecond ? 2 : 1;
    readGraphOptions(graphs, 0);
    const bool looksSame = state_->colors == colors && state_->graphs == graphs;
    state_->colors = colors;
    state_->graphs = graphs;
    if (!looksSame)
        graphDidChange();
}

void HistogramMeter::prepareColumns(MeasureValues) {
    if (!isAutoScaled())
        return;
    const double largest = largestValue();
    if (std::exchange(state_->largest, largest) != largest)
        graphDidChange();
}

void HistogramMeter::drawColumns(QPainter& painter, Index first, Index end) const {
    const double height = columnHeight();
    const auto heightOf = [&](int graph, Index index) {
        const auto* stored = graph < state_->graphs ? sample(graph, index) : nullptr;
        if (!stored)
            return 0.0;
        const double autoShare = state_->largest > 0 ? std::clamp(stored->value / state_->largest, 0.0, 1.0) : 0;
        return std::round((isAutoScaled() ? autoShare : stored->share) * height);
    };
    painter.setRenderHint(QPainter::Antialiasing, isSmooth(false));
    const auto fill = [&](Index index, double from, double to, const QColor& color) {
        if (to > from)
            fillExactly(painter, QRectF(static_cast<double>(index - first), from, 1, to - from), color);
    };
    for (Index i = first; i < end; ++i) {
        const double primary = heightOf(0, i);
        const double secondary = heightOf(1, i);
        const double both = std::min(primary, secondary);
        fill(i, 0, both, state_->colors.both);
        fill(i, both, primary, state_->colors.primary);
        fill(i, both, secondary, state_->colors.secondary);
    }
}

} // namespace Ostrel
