#include "OstrelEngine/Measures/Full/FullValueShaping.h"

#include "OstrelDialect/OptionValues.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

namespace Ostrel {

namespace {

constexpr int MaximumAverageSize = 1024;

bool isOn(const Options& options, const CaseKey& key) {
    const auto written = option(options, key);
    return written && OptionValues::isOn(*written).value_or(false);
}

std::optional<double> bound(const Options& options, const CaseKey& key) {
    const auto written = option(options, key);
    return written ? OptionValues::number(*written) : std::nullopt;
}

} // namespace

FullValueShaping::FullValueShaping(ShapingRules rules, FullMeasureHost& host, const BaseMeasure& measure)
    : rules_(rules)
    , host_(host)
    , measure_(measure) { }

void FullValueShaping::optionsDidChange(const Options& options) {
    const auto size = option(options, "AverageSize"_key);
    averageSize_ = size && rules_.averages
        ? static_cast<std::size_t>(std::clamp(OptionValues::integer(*size).value_or(1), 1, MaximumAverageSize))
        : 1;
    const bool canInvert = rules_.inversion == ShapingRules::Inversion::Allowed
        || (rules_.inversion == ShapingRules::Inversion::UnlessTotal && !isOn(options, "Total"_key));
    isInverted_ = canInvert && isOn(options, "InvertMeasure"_key);
    const bool readsBounds = rules_.bounds == ShapingRules::Bounds::FromOptions;
    minimum_ = readsBounds ? bound(options, "MinValue"_key) : std::nullopt;
    maximum_ = readsBounds ? bound(options, "MaxValue"_key) : std::nullopt;
    readSubstitution(options);
}

void FullValueShaping::readSubstitution(const Options& options) {
    const auto text = option(options, "Substitute"_key).value_or("");
    const bool isRegularExpression = isOn(options, "RegExpSubstitute"_key);
    if (text == substitute_ && isRegularExpression == isRegularExpression_)
        return;
    substitute_ = text;
    isRegularExpression_ = isRegularExpression;
    std::vector<std::string> errors;
    chain_ = SubstituteChain::create(text,
        isRegularExpression ? SubstituteChain::Patterns::RegularExpressions : SubstituteChain::Patterns::Plain, errors);
    lastText_.reset();
    for (const auto& error : errors)
        host_.log(LogLevel::Error, measure_.name(), error);
}

void FullValueShaping::shape(MeasureValue& value) {
    // A value that is no number would stay in the average and in the bounds.
    if (!std::isfinite(value.numericValue))
        value.numericValue = 0;
    value.numericValue = average_.add(value.numericValue, averageSize_);
    boundsOf(value);
    if (isInverted_)
        value.numericValue = value.minValue + value.maxValue - value.numericValue;
    substituteText(value);
}

void FullValueShaping::boundsOf(MeasureValue& value) {
    if (value.minValue > value.maxValue) {
        lowest_ = std::min(lowest_, value.numericValue);
        highest_ = std::max(highest_, value.numericValue);
        value.minValue = lowest_;
        value.maxValue = highest_;
    }
    value.minValue = minimum_.value_or(value.minValue);
    value.maxValue = maximum_.value_or(value.maxValue);
}

void FullValueShaping::substituteText(MeasureValue& value) {
    if (!chain_)
        return;
    if (!value.preferStringValue && value.stringValue.empty()) {
        value.textRule = chain_;
        return;
    }
    if (lastText_ != value.stringValue) {
        lastSubstituted_ = chain_->apply(value.stringValue);
        lastText_ = value.stringValue;
    }
    value.stringValue = lastSubstituted_;
}

} // namespace Ostrel
