#include "OstrelEngine/Meters/Full/LineMeter.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Meters/Full/DevicePicture.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QPainter>
#include <QPolygonF>
#include <cstdint>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace Ostrel {

namespace {

constexpr int MostLines = 64;
constexpr double WidestLine = 1000;

struct LineStyle {
    QColor color;
    double scale = 1;

    friend bool operator==(const LineStyle&, const LineStyle&) = default;
};

struct Style {
    std::vector<LineStyle> lines;
    double width = 1;
    bool hasMarkers = false;
    QColor markerColor;
    bool keepsWidth = false;
    bool isSmooth = false;

    friend bool operator==(const Style&, const Style&) = default;
};

} // namespace

struct LineMeter::State {
    Style style;
    /// The value at the top of the box; 0 when all lines lie at the bottom.
    double top = 0;
    /// For one line at a time.
    mutable QPolygonF points;
};

LineMeter::LineMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context)
    : GraphMeter(definition, std::move(options), context)
    , state_(std::make_unique<State>()) { }

LineMeter::~LineMeter() = default;

void LineMeter::readOptions() {
    Style style;
    const int count = std::clamp(integer("LineCount"_key, 1), 0, MostLines);
    for (int i = 1; i <= count; ++i) {
        const auto numbered = [&](std::string name) -> std::string_view {
            const auto* value = options().find(i == 1 ? name : name + formatInteger(static_cast<std::int64_t>(i)));
            return value ? std::string_view(*value) : std::string_view();
        };
        const auto color = OptionValues::color(numbered("LineColor"));
        style.lines.push_back({color ? toQColor(*color) : QColor(Qt::white),
            boundedCoordinate(OptionValues::number(numbered("Scale")).value_or(1))});
    }
    style.width = std::clamp(boundedCoordinate(number("LineWidth"_key, 1)), 0.0, WidestLine);
    style.hasMarkers = isOn("HorizontalLines"_key, false);
    style.markerColor = toQColor(color("HorizontalLineColor"_key, {0, 0, 0, 255}));
    style.keepsWidth = equalsIgnoringCase(OptionValues::unquoted(text("TransformStroke"_key)), "Fixed");
    style.isSmooth = isSmooth(false);
    readGraphOptions(count, static_cast<int>(std::ceil(style.width / 2)) + 1);
    if (style == state_->style)
        return;
    state_->style = std::move(style);
    graphDidChange();
}

void LineMeter::prepareColumns(MeasureValues values) {
    double top = 0;
    if (isAutoScaled()) {
        top = largestValue();
    } else {
        for (std::size_t i = 0; i < std::min(values.size(), state_->style.lines.size()); ++i)
            top = std::max(top, values[i].maxValue);
    }
    if (!std::isfinite(top))
        top = 0;
    if (std::exchange(state_->top, top) != top)
        graphDidChange();
}

void LineMeter::drawColumns(QPainter& painter, Index first, Index end) const {
    const auto& style = state_->style;
    const double height = columnHeight();
    if (style.hasMarkers)
        for (const double share : {0.25, 0.5, 0.75})
            fillExactly(painter, QRectF(0, std::round(height * share), static_cast<double>(end - first), 1),
                style.markerColor, false);
    if (!(style.width > 0))
        return;
    painter.setRenderHint(QPainter::Antialiasing, style.isSmooth);
    // A wider joint reaches into the columns beside it.
    const Index margin = static_cast<Index>(std::ceil(style.width / 2)) + 1;
    for (std::size_t line = 0; line < style.lines.size(); ++line) {
        const auto& [color, scale] = style.lines[line];
        const double perValue = state_->top > 0 ? (isAutoScaled() ? 1 : scale) / state_->top * height : 0;
        auto& points = state_->points;
        points.clear();
        for (Index i = first - margin; i < end + margin; ++i)
            if (const auto* stored = sample(static_cast<int>(line), i))
                points.append(QPointF(static_cast<double>(i - first) + 0.5,
                    std::clamp(
                        stored->value * perValue, std::min(0.5, height / 2), std::max(height - 0.5, height / 2))));
        QPen pen(color, style.width, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin);
        if (style.keepsWidth && matrixScale() > 0) {
            const double canvasScale = std::sqrt(std::abs(painter.deviceTransform().determinant())) / matrixScale();
            pen.setWidthF(style.width * canvasScale);
            pen.setCosmetic(true);
        }
        painter.setPen(pen);
        painter.drawPolyline(points);
    }
}

} // namespace Ostrel
