#include "OstrelEngine/Measures/Full/FullMeasure.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"

#include <limits>
#include <utility>

namespace Ostrel {

namespace {

/// An empty range stands for the smallest and largest value seen.
constexpr double TrackedMinimum = std::numeric_limits<double>::infinity();
constexpr double TrackedMaximum = -std::numeric_limits<double>::infinity();

} // namespace

void FullMeasureHost::runActionWithInput(const BaseMeasure& measure, std::string_view action, std::string_view input) {
    runAction(measure, replacingOccurrencesIgnoringCase(action, "$UserInput$", input));
}

FullMeasure::FullMeasure(const MeasureDefinition& definition, FullMeasureHost& host)
    : BaseMeasure(definition, {})
    , host_(host) { }

bool FullMeasure::optionsDidChange() {
    return std::exchange(readRevision_, optionsRevision()) != optionsRevision();
}

double FullMeasure::number(const CaseKey& key, double fallback) const {
    const auto written = option(key);
    return written ? OptionValues::number(*written).value_or(fallback) : fallback;
}

int FullMeasure::integer(const CaseKey& key, int fallback) const {
    const auto written = option(key);
    return written ? OptionValues::integer(*written).value_or(fallback) : fallback;
}

bool FullMeasure::isOn(const CaseKey& key, bool fallback) const {
    const auto written = option(key);
    return written ? OptionValues::isOn(*written).value_or(fallback) : fallback;
}

std::string_view FullMeasure::text(const CaseKey& key, std::string_view fallback) const {
    return option(key).value_or(fallback);
}

void FullMeasure::publishNumber(double number) {
    publish(number, {}, false, TrackedMinimum, TrackedMaximum);
}

void FullMeasure::publishNumber(double number, double minimum, double maximum) {
    publish(number, {}, false, minimum, maximum);
}

void FullMeasure::publishText(std::string_view text, double number) {
    publish(number, text, true, TrackedMinimum, TrackedMaximum);
}

void FullMeasure::publishText(std::string_view text, double number, double minimum, double maximum) {
    publish(number, text, true, minimum, maximum);
}

} // namespace Ostrel
