#include "OstrelEngine/Meters/Full/GraphMeter.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Meters/Full/DevicePicture.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace Ostrel {

namespace {

constexpr double MostColumns = 8192;
constexpr int MostGraphs = 64;
constexpr double MostSamples = 131072;
constexpr double MostRingPixels = 16'000'000;

struct GraphLayout {
    bool isAutoScaled = false;
    bool startsRight = true;
    bool isVertical = true;
    bool isFlipped = false;
    /// Along the time, and along the values.
    double columns = 0;
    double height = 0;
    int graphs = 0;
    int margin = 0;

    /// The newest column has the highest coordinate.
    bool growsUpward() const { return isVertical ? startsRight : isFlipped; }

    /// From columns, counted from 0 at `corner` on, to the box: along x or y, and back from the far side.
    QTransform toBox(double columnsShown) const {
        const double way = growsUpward() ? 1 : -1;
        const double begin = growsUpward() ? 0 : columnsShown;
        if (isVertical)
            return isFlipped ? QTransform(way, 0, 0, 1, begin, 0) : QTransform(way, 0, 0, -1, begin, height);
        return startsRight ? QTransform(0, way, -1, 0, height, begin) : QTransform(0, way, 1, 0, 0, begin);
    }
    QRectF box(double from, double count) const {
        return isVertical ? QRectF(from, 0, count, height) : QRectF(0, from, height, count);
    }

    friend bool operator==(const GraphLayout&, const GraphLayout&) = default;
};

double finite(double value) {
    return std::isfinite(value) ? value : 0;
}

bool isWhole(double value) {
    return value == std::floor(value);
}

std::int64_t remainder(std::int64_t value, std::int64_t by) {
    const auto rest = value % by;
    return rest < 0 ? rest + by : rest;
}

} // namespace

struct GraphMeter::State {
    GraphLayout layout;
    /// A ring of each graph.
    std::vector<std::vector<Sample>> samples;
    Index count = 0;
    std::size_t capacity = 0;

    /// The columns up to `drawn`, each at its number modulo the number of columns.
    KeptImage ring;
    int ringScale = 0;
    Index drawn = 0;
    bool isRingStale = true;
    /// All columns, where they cannot be kept in a ring.
    DevicePicture picture;
    std::uint64_t revision = 0;

    Index columns() const { return static_cast<Index>(layout.columns); }
    /// Where a column lies in the ring, in points.
    Index slot(Index index) const {
        const Index place = remainder(index, columns());
        return layout.growsUpward() ? place : columns() - 1 - place;
    }
    void resize() {
        const auto wanted = static_cast<std::size_t>(columns() + layout.margin);
        std::vector<std::vector<Sample>> resized(static_cast<std::size_t>(layout.graphs), std::vector<Sample>(wanted));
        const auto kept = static_cast<Index>(std::min(capacity, wanted));
        for (std::size_t graph = 0; graph < std::min(samples.size(), resized.size()); ++graph)
            for (Index i = std::max<Index>(0, count - kept); i < count; ++i)
                resized[graph][static_cast<std::size_t>(i) % wanted]
                    = samples[graph][static_cast<std::size_t>(i) % capacity];
        samples = std::move(resized);
        if (wanted > capacity && capacity > 0)
            oldest = std::max(oldest, count - static_cast<Index>(capacity));
        capacity = wanted;
    }
    /// Older ones were let go by a smaller box.
    Index oldest = 0;
};

GraphMeter::GraphMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context)
    : FullMeter(definition, std::move(options), context)
    , state_(std::make_unique<State>()) { }

GraphMeter::~GraphMeter() = default;

void GraphMeter::readGraphOptions(int graphs, int margin) {
    GraphLayout layout;
    layout.isAutoScaled = isOn("AutoScale"_key, false);
    layout.startsRight = !equalsIgnoringCase(OptionValues::unquoted(text("GraphStart"_key)), "Left");
    layout.isVertical = !equalsIgnoringCase(OptionValues::unquoted(text("GraphOrientation"_key)), "Horizontal");
    layout.isFlipped = isOn("Flip"_key, false);
    const Size size = contentSize(writtenWidth(), writtenHeight());
    layout.graphs = std::clamp(graphs, 1, MostGraphs);
    const double most = std::min(MostColumns, std::floor(MostSamples / layout.graphs));
    layout.columns = std::min(most, layout.isVertical ? size.width : size.height);
    layout.height = layout.isVertical ? size.height : size.width;
    layout.margin = margin;
    if (layout == state_->layout)
        return;
    state_->layout = layout;
    state_->resize();
    graphDidChange();
}

void GraphMeter::graphDidChange() {
    state_->isRingStale = true;
    ++state_->revision;
    contentDidChange();
}

double GraphMeter::columnCount() const {
    return state_->layout.columns;
}

double GraphMeter::columnHeight() const {
    return state_->layout.height;
}

QTransform GraphMeter::toBox() const {
    return state_->layout.toBox(state_->layout.columns);
}

bool GraphMeter::isAutoScaled() const {
    return state_->layout.isAutoScaled;
}

const GraphMeter::Sample* GraphMeter::sample(int graph, Index index) const {
    const auto oldest = std::max(state_->oldest, state_->count - static_cast<Index>(state_->capacity));
    if (index < std::max<Index>(0, oldest) || index >= state_->count || graph >= state_->layout.graphs)
        return nullptr;
    return &state_->samples[static_cast<std::size_t>(graph)][static_cast<std::size_t>(index) % state_->capacity];
}

double GraphMeter::largestValue() const {
    double largest = 0;
    for (int graph = 0; graph < state_->layout.graphs; ++graph)
        for (Index i = state_->count - state_->columns(); i < state_->count; ++i)
            if (const auto* stored = sample(graph, i))
                largest = std::max(largest, stored->value);
    return largest;
}

void GraphMeter::takeValues(MeasureValues values) {
    if (state_->capacity > 0 && state_->columns() > 0) {
        const auto at = static_cast<std::size_t>(state_->count) % state_->capacity;
        for (std::size_t graph = 0; graph < state_->samples.size(); ++graph) {
            const bool isBound = graph < values.size();
            const double value = isBound ? finite(values[graph].numericValue) : 0;
            state_->samples[graph][at] = {value, isBound ? values[graph].percentFraction() : 0};
        }
        ++state_->count;
        ++state_->revision;
        contentDidChange();
    }
    prepareColumns(values);
}

Size GraphMeter::contentSize(std::optional<double> width, std::optional<double> height) const {
    return {width.value_or(0), height.value_or(0)};
}

void GraphMeter::drawContent(QPainter& painter) {
    if (state_->columns() <= 0 || !(state_->layout.height > 0))
        return;
    const QPointF corner = toQRectF(contentRect()).topLeft();
    if (columnsMoveUnchanged() && drawRing(painter, corner.x(), corner.y()))
        return;
    const auto& layout = state_->layout;
    const QRectF box = layout.box(0, layout.columns);
    state_->picture.draw(painter, box.translated(corner), state_->revision, [&](QPainter& inner) {
        inner.translate(corner);
        inner.setClipRect(box);
        inner.setTransform(layout.toBox(layout.columns), true);
        drawColumns(inner, state_->count - state_->columns(), state_->count);
    });
}

bool GraphMeter::drawRing(QPainter& painter, double cornerX, double cornerY) {
    const QTransform toDevice = painter.deviceTransform();
    const double scale = toDevice.m11();
    const QPointF corner = toDevice.map(QPointF(cornerX, cornerY));
    if (toDevice.type() > QTransform::TxScale || scale != toDevice.m22() || scale < 1 || !isWhole(scale)
        || !isWhole(corner.x()) || !isWhole(corner.y()))
        return false;
    const auto& layout = state_->layout;
    const QRectF whole = layout.box(0, layout.columns);
    if (whole.width() * whole.height() * scale * scale > MostRingPixels)
        return false;
    const QSize size = (whole.size() * scale).toSize();
    if (state_->ring.image().size() != size || state_->ringScale != static_cast<int>(scale))
        state_->isRingStale = true;
    state_->ring.setSize(size);
    state_->ringScale = static_cast<int>(scale);
    if (state_->ring.image().isNull())
        return false;

    const Index columns = state_->columns();
    const Index shown = state_->count - columns;
    if (std::exchange(state_->isRingStale, false))
        drawIntoRing(shown, state_->count);
    else if (state_->drawn < state_->count)
        drawIntoRing(std::max(shown, state_->drawn - layout.margin), state_->count);
    state_->drawn = state_->count;

    // The column that has the lowest coordinate in the box, and from where on the ring begins again.
    const Index begin = state_->slot(layout.growsUpward() ? shown : state_->count - 1);
    const DevicePixels pixels(painter);
    const auto copy = [&](Index from, Index to, Index count) {
        const QRectF source = layout.box(static_cast<double>(from), static_cast<double>(count));
        const QRectF target = layout.box(static_cast<double>(to), static_cast<double>(count));
        const QRect sourcePixels((source.topLeft() * scale).toPoint(), (source.size() * scale).toSize());
        painter.drawImage((corner + target.topLeft() * scale).toPoint(), state_->ring.image(), sourcePixels);
    };
    copy(begin, 0, columns - begin);
    if (begin > 0)
        copy(0, columns - begin, begin);
    if (KeptImage::areTooMany())
        state_->ring.drop();
    return true;
}

void GraphMeter::drawIntoRing(Index first, Index end) {
    const auto& layout = state_->layout;
    QPainter painter(&state_->ring.image());
    while (first < end) {
        // Up to where the ring begins again.
        const Index count = std::min(end - first, state_->columns() - remainder(first, state_->columns()));
        const Index begin = layout.growsUpward() ? state_->slot(first) : state_->slot(first + count - 1);
        const QRectF box = layout.box(static_cast<double>(begin), static_cast<double>(count));
        painter.resetTransform();
        painter.scale(state_->ringScale, state_->ringScale);
        painter.setClipRect(box);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(box, Qt::transparent);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.translate(box.topLeft());
        painter.setTransform(layout.toBox(static_cast<double>(count)), true);
        drawColumns(painter, first, first + count);
        first += count;
    }
}

} // namespace Ostrel
