#include "OstrelEngine/Runtime/MonstercatBarLayout.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/CalcMeasure.h"
#include "OstrelEngine/Runtime/RuntimeExpressions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <string_view>

namespace Ostrel {

namespace {

double runtimeVariableDimension(
    const Options& variables, const RuntimeExpressions& expressions, const CaseKey& key, double defaultValue) {
    const auto text = option(variables, key);
    if (!text || trimmed(*text).empty())
        return defaultValue;
    const std::string substituted = expressions.substituteRuntimeVariables(*text);
    return CalcMeasure::evaluateIfValid(trimmed(substituted)).value_or(defaultValue);
}

bool hasGeometry(const Options& options) {
    return options.find("X"_key) || options.find("Y"_key) || options.find("W"_key) || options.find("H"_key);
}

/// What follows `prefix` in the upper-cased name, when it is a whole number.
std::optional<double> barIndex(std::string_view name, std::string_view prefix) {
    if (!name.starts_with(prefix))
        return std::nullopt;
    const auto index = parseInteger(name.substr(prefix.size()));
    return index ? std::optional(static_cast<double>(*index)) : std::nullopt;
}

} // namespace

MonstercatBarLayout makeMonstercatBarLayout(const Options& variables, const RuntimeExpressions& expressions) {
    const auto dimension = [&](const CaseKey& key, double defaultValue) {
        return runtimeVariableDimension(variables, expressions, key, defaultValue);
    };
    const double scale = std::max(dimension("ScaleVisualizer"_key, 1.0), 0.01);
    MonstercatBarLayout layout;
    layout.barWidth = std::max(dimension("BarWidth"_key, 18.0) * scale, 1.0);
    // The one figure that does not scale.
    layout.barHeight = std::max(dimension("BarHeight"_key, 350.0), 1.0);
    const double gap = std::max(dimension("BarGap"_key, 7.0) * scale, 0.0);
    layout.shadowOffset = 4.0 * scale;
    layout.stride = std::floor(layout.barWidth + gap);
    return layout;
}

std::optional<MeterFrame> fallbackMonstercatBarFrame(const MeterRenderer& meter, const MonstercatBarLayout& layout) {
    if (!meter.joinsBarRow() || hasGeometry(meter.options()))
        return std::nullopt;
    const std::string name = upperCased(meter.name());
    double offset = 0;
    auto index = barIndex(name, "METERBAR");
    if (!index) {
        index = barIndex(name, "METERSHADOWBAR");
        offset = layout.shadowOffset;
    }
    if (!index)
        return std::nullopt;
    return MeterFrame{layout.stride * *index + offset, offset, layout.barWidth, layout.barHeight + offset};
}

bool isMonstercatBarVariable(std::string_view upperCasedName) {
    constexpr std::array<std::string_view, 4> Names{"SCALEVISUALIZER", "BARWIDTH", "BARHEIGHT", "BARGAP"};
    return std::ranges::find(Names, upperCasedName) != Names.end();
}

} // namespace Ostrel
