#include "OstrelEngine/Measures/CalcMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/ExpressionParser.h"
#include "OstrelEngine/Measures/IntegerConversion.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Ostrel {

double CalcMeasure::evaluate(std::string_view text) {
    return evaluateIfValid(text).value_or(0);
}

std::optional<double> CalcMeasure::evaluateIfValid(std::string_view text) {
    const auto value = ExpressionParser(text).parse();
    return value && std::isfinite(*value) ? value : std::nullopt;
}

CalcMeasure::CalcMeasure(const MeasureDefinition& definition, std::string skinPath, const MeasureHost& host)
    : BaseMeasure(definition, std::move(skinPath))
    , host_(host) { }

void CalcMeasure::update() {
    const bool optionsChanged = readRevision_ != optionsRevision();
    if (optionsChanged)
        formula_ = CalcFormula(option("Formula"_key).value_or("0"), &host_);
    const bool formulaChanged = formula_.update();
    if (optionsChanged)
        readNumbers();
    readRevision_ = optionsRevision();
    // An average moves on even when its newest value is the same again.
    if (!optionsChanged && !formulaChanged && averageSize_ < 2)
        return;
    const double number = average_.add(formula_.value(), averageSize_);
    publish(number, formatGeneral(number), false, minimum_, maximum_);
}

void CalcMeasure::readNumbers() {
    averageSize_ = readAverageSize();
    minimum_ = readBound("MinValue"_key, 0);
    maximum_ = readBound("MaxValue"_key, 1);
}

std::size_t CalcMeasure::readAverageSize() const {
    const auto text = trimmed(option("AverageSize"_key).value_or(""));
    auto size = parseDouble(text);
    if (!size || !std::isfinite(*size))
        size = evaluateIfValid(text);
    if (!size)
        return 1;
    return static_cast<std::size_t>(std::clamp<std::int64_t>(integerOrStop(std::round(*size)), 1, 1024));
}

double CalcMeasure::readBound(const CaseKey& key, double defaultValue) const {
    const auto number = parseDouble(trimmed(option(key).value_or("")));
    return number && std::isfinite(*number) ? *number : defaultValue;
}

} // namespace Ostrel
