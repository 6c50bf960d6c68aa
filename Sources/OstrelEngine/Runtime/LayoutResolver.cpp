#include "OstrelEngine/Runtime/LayoutResolver.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/PositionParser.h"
#include "OstrelEngine/Runtime/MeterBindings.h"
#include "OstrelEngine/Runtime/MeterTable.h"
#include "OstrelEngine/Runtime/MonstercatBarLayout.h"

#include <algorithm>
#include <array>
#include <limits>

namespace Ostrel {

namespace {

constexpr double BaseWidgetPadding = 24;
constexpr double MinimumHeight = 50;
constexpr double MinimumWidth = 220;
constexpr double MinimumDynamicWidth = 100;

constexpr std::array<std::string_view, 10> LayoutSensitiveMeterOptionKeys{
    "X", "Y", "W", "H", "STRINGALIGN", "FONTFACE", "FONTSIZE", "TEXT", "IMAGENAME", "TRANSFORMATIONMATRIX"};

/// The area that all meters take; what is not a number is left out.
struct Bounds {
    static constexpr double Nowhere = std::numeric_limits<double>::max();

    double minX = Nowhere;
    double minY = Nowhere;
    double maxX = 0;
    double maxY = 0;

    void include(const Rect& rect) {
        minX = std::min(minX, rect.minX());
        minY = std::min(minY, rect.minY());
        maxX = std::max(maxX, farEdge(rect.x, rect.width));
        maxY = std::max(maxY, farEdge(rect.y, rect.height));
    }
    bool isEmpty() const { return minX == Nowhere || minY == Nowhere; }

private:
    /// No number where the length is none: the order of the two keeps it.
    static double farEdge(double origin, double length) { return std::max(origin + length, origin); }
};

} // namespace

LayoutResolver::LayoutResolver(const MeterTable& meters, MeterBindings& bindings, const RuntimeExpressions& expressions,
    const Options& variables, WindowSize windowSize)
    : meters_(meters)
    , bindings_(bindings)
    , expressions_(expressions)
    , variables_(variables)
    , minimumWidth_(windowSize == WindowSize::Dynamic ? MinimumDynamicWidth : MinimumWidth) { }

void LayoutResolver::resolveLayout() {
    const auto bars = makeMonstercatBarLayout(variables_, expressions_);
    Bounds bounds;
    Previous previous;
    for (std::size_t i = 0; i < meters_.count(); ++i) {
        auto& meter = meters_.at(i);
        const auto values = bindings_.values(i);
        if (const auto fallback = fallbackMonstercatBarFrame(meter, bars))
            setFallbackFrame(meter, *fallback);
        else
            meter.setFrame(frame(meter, values, previous));
        // The chain of relative positions follows the frames, the widget's size what the meters really cover.
        bounds.include(meter.interactionRect(values));
        const auto& placed = meter.frame();
        previous = {placed.x, placed.y, placed.x + placed.w, placed.y + placed.h};
    }
    if (bounds.isEmpty())
        bounds = {0, 0, 0, 0};
    fitWidget(bounds.minX, bounds.minY, bounds.maxX, bounds.maxY);
    needsResolution_ = false;
}

void LayoutResolver::setFallbackFrame(MeterRenderer& meter, const MeterFrame& frame) const {
    if (!meter.options().find("BarOrientation"_key))
        meter.setOption("BarOrientation", "Vertical");
    meter.setFrame(frame);
}

MeterFrame LayoutResolver::frame(MeterRenderer& meter, MeasureValues values, const Previous& previous) const {
    const double x = left(meter, previous);
    const double y = top(meter, previous);
    const Size size = meter.naturalSize(values, writtenSize(meter));
    return {x, y, size.width, size.height};
}

double LayoutResolver::left(const MeterRenderer& meter, const Previous& previous) const {
    const auto text = option(meter.options(), "X"_key).value_or("");
    const auto position = PositionParser::parsePosition(meters_.substituteMeterCoordinateReferences(text));
    if (!position)
        return 0;
    if (!position->isRelative())
        return position->value;
    return (position->usesEdgeReference() ? previous.right : previous.x) + position->value;
}

double LayoutResolver::top(const MeterRenderer& meter, const Previous& previous) const {
    const auto text = option(meter.options(), "Y"_key).value_or("");
    const auto position = PositionParser::parsePosition(meters_.substituteMeterCoordinateReferences(text));
    // Unlike a missing X: without a place of its own a meter stands below the one before.
    if (!position)
        return previous.bottom;
    if (!position->isRelative())
        return position->value;
    return (position->usesEdgeReference() ? previous.bottom : previous.y) + position->value;
}

Size LayoutResolver::writtenSize(const MeterRenderer& meter) const {
    const auto dimension = [&](const CaseKey& key) {
        const auto text = option(meter.options(), key).value_or("");
        return PositionParser::parseDimension(meters_.substituteMeterCoordinateReferences(text));
    };
    return {dimension("W"_key), dimension("H"_key)};
}

void LayoutResolver::fitWidget(double minX, double minY, double maxX, double maxY) {
    // The top edge is held below the padding; the left one only from leaving the widget.
    const double shiftX = minX < 0 ? -minX : 0;
    const double shiftY = minY < BaseWidgetPadding ? BaseWidgetPadding - minY : 0;
    if (shiftX != 0 || shiftY != 0) {
        for (const auto& meter : meters_.all()) {
            const auto& frame = meter->frame();
            meter->setFrame({frame.x + shiftX, frame.y + shiftY, frame.w, frame.h});
        }
    }
    widgetSize_.width = std::max(maxX + shiftX + BaseWidgetPadding, minimumWidth_);
    widgetSize_.height = std::max(maxY + shiftY + BaseWidgetPadding, MinimumHeight);
}

bool LayoutResolver::hasImageWaitingForItsSize() const {
    return std::ranges::any_of(meters_.all(), [](const auto& meter) { return meter->isWaitingForLayout(); });
}

bool LayoutResolver::shouldMeterOptionTriggerLayout(std::string_view key) {
    const std::string name = upperCased(trimmed(key));
    const auto& keys = LayoutSensitiveMeterOptionKeys;
    return name.starts_with("SHAPE") || std::ranges::find(keys, name) != keys.end();
}

bool LayoutResolver::shouldVariableTriggerLayout(std::string_view name) const {
    const std::string key = upperCased(trimmed(name));
    if (key.empty())
        return false;
    if (isMonstercatBarVariable(key))
        return true;
    if (!textsWithVariables_)
        textsWithVariables_ = findTextsWithVariables();
    const std::string token = "#" + key + "#";
    return std::ranges::any_of(
        *textsWithVariables_, [&](const std::string& text) { return text.find(token) != std::string::npos; });
}

std::vector<std::string> LayoutResolver::findTextsWithVariables() const {
    std::vector<std::string> texts;
    for (const auto& meter : meters_.all()) {
        for (const auto& [key, value, hash] : meter->options()) {
            if (value.find('#') != std::string::npos && shouldMeterOptionTriggerLayout(key))
                texts.push_back(upperCased(value));
        }
    }
    return texts;
}

} // namespace Ostrel
