#include "OstrelEngine/Meters/Full/HistogramMeter.h"

#include "OstrelEngine/Meters/Full/DevicePicture.h"
#include "OstrelEngine/Meters/Full/PictureSource.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QPainter>
#include <QTransform>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <string_view>
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
    explicit State(const FullMeterContext& context)
        : pictures{PictureSource(context), PictureSource(context), PictureSource(context)} { }

    Colors colors;
    /// Of the primary graph, the secondary and both; unnamed ones are not used.
    std::array<PictureSource, 3> pictures;
    std::array<std::string, 3> pictureNames;
    int graphs = 0;
    /// What a full column stands for with AutoScale.
    double largest = 0;
};

HistogramMeter::HistogramMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context)
    : GraphMeter(definition, std::move(options), context)
    , state_(std::make_unique<State>(context)) { }

HistogramMeter::~HistogramMeter() = default;

void HistogramMeter::readOptions() {
    const Colors colors{toQColor(color("PrimaryColor"_key, {0, 128, 0, 255})),
        toQColor(color("SecondaryColor"_key, {255, 0, 0, 255})), toQColor(color("BothColor"_key, {255, 255, 0, 255}))};
    const bool hasSecond = !text("MeasureName2"_key, text("SecondaryMeasureName"_key)).empty();
    const int graphs = text("MeasureName"_key).empty() ? 0 : hasSecond ? 2 : 1;
    constexpr std::array<std::string_view, 3> Prefixes{"Primary", "Secondary", "Both"};
    std::array<std::string, 3> names{std::string(OptionValues::unquoted(text("PrimaryImage"_key))),
        std::string(OptionValues::unquoted(text("SecondaryImage"_key))),
        std::string(OptionValues::unquoted(text("BothImage"_key)))};
    // One of the two graphs' pictures needs the picture of what they share.
    if (names[2].empty())
        names[1].clear();
    bool isOtherPicture = names != state_->pictureNames;
    state_->pictureNames = std::move(names);
    for (std::size_t i = 0; i < Prefixes.size(); ++i) {
        isOtherPicture |= state_->pictures[i].setOptions(options(), Prefixes[i]);
        isOtherPicture |= state_->pictures[i].show(state_->pictureNames[i]);
    }
    readGraphOptions(graphs, 0);
    const bool looksSame = !isOtherPicture && state_->colors == colors && state_->graphs == graphs;
    state_->colors = colors;
    state_->graphs = graphs;
    if (!looksSame)
        graphDidChange();
}

bool HistogramMeter::ignoresWrittenSize() const {
    return !state_->pictureNames[0].empty();
}

Size HistogramMeter::contentSize(std::optional<double> width, std::optional<double> height) const {
    if (!ignoresWrittenSize())
        return GraphMeter::contentSize(width, height);
    const QSize size = state_->pictures[0].image().size();
    return {static_cast<double>(std::max(0, size.width())), static_cast<double>(std::max(0, size.height()))};
}

void HistogramMeter::takeValues(MeasureValues values) {
    // A file may have changed since the options were read.
    bool isOther = false;
    for (std::size_t i = 0; i < state_->pictures.size(); ++i)
        isOther |= state_->pictures[i].show(state_->pictureNames[i]);
    if (isOther) {
        readGraphOptions(state_->graphs, 0);
        graphDidChange();
    }
    GraphMeter::takeValues(values);
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
    const QTransform toBox = this->toBox();
    const auto fill = [&](Index index, double from, double to, const QColor& color, std::size_t picture) {
        const QRectF column(static_cast<double>(index - first), from, 1, to - from);
        if (!(to > from))
            return;
        if (state_->pictureNames[picture].empty()) {
            fillExactly(painter, column, color, isSmooth(false));
            return;
        }
        // The same place of the box and of the picture, which is drawn upright whatever way the columns go.
        const QRectF uncovered = toBox.mapRect(column);
        painter.save();
        painter.setTransform(toBox.inverted(), true);
        painter.drawImage(uncovered, state_->pictures[picture].image(), uncovered);
        painter.restore();
    };
    for (Index i = first; i < end; ++i) {
        const double primary = heightOf(0, i);
        const double secondary = heightOf(1, i);
        const double both = std::min(primary, secondary);
        fill(i, 0, both, state_->colors.both, 2);
        fill(i, both, primary, state_->colors.primary, 0);
        fill(i, both, secondary, state_->colors.secondary, 1);
    }
}

} // namespace Ostrel
