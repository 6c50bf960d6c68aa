#include "OstrelEngine/Runtime/RuntimeExpressions.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/CalcMeasure.h"
#include "OstrelEngine/Runtime/ExpressionText.h"
#include "OstrelEngine/Runtime/MeasureTable.h"

namespace Ostrel {

namespace {

/// %.10g, as every number of a measure is written into text.
constexpr int MeasureDigits = 10;

std::optional<double> evaluateSubstituted(std::string_view text) {
    return ExpressionText::evaluateNormalized(ExpressionText::normalizeExpression(text));
}

std::string referenceText(const MeasureReference& reference) {
    const auto& value = reference.measure->value();
    return reference.isPercentage ? formatFixed(value.percentValue(), 0)
                                  : formatGeneral(value.numericValue, MeasureDigits);
}

} // namespace

std::string RuntimeExpressions::substituteRuntimeVariables(std::string_view text) const {
    std::string result;
    ExpressionText::appendWithVariables(result, text, [this](std::string_view name) { return variables_.find(name); });
    return result;
}

std::string RuntimeExpressions::substituteMeasureIdentifiers(std::string_view text) const {
    std::string result;
    appendWithMeasureNumbers(result, text);
    return result;
}

void RuntimeExpressions::appendWithMeasureNumbers(std::string& result, std::string_view text) const {
    std::size_t copied = 0;
    for (auto name = ExpressionText::nextIdentifier(text, 0); name.begin < text.size();
         name = ExpressionText::nextIdentifier(text, name.end)) {
        const auto* measure = measures_.find(text.substr(name.begin, name.end - name.begin));
        if (!measure)
            continue;
        result.append(text, copied, name.begin - copied);
        appendGeneral(result, measure->value().numericValue, MeasureDigits);
        copied = name.end;
    }
    result.append(text, copied);
}

std::string RuntimeExpressions::resolveMeasureReferences(std::string_view text) const {
    std::string result;
    std::size_t copied = 0;
    forEachMeasureReference(text, measures_, [&](const MeasureReference& reference) {
        result.append(text, copied, reference.begin - copied);
        result += referenceText(reference);
        copied = reference.end;
    });
    result.append(text, copied);
    return result;
}

std::optional<double> RuntimeExpressions::evaluateNumericExpressionWithMeasures(std::string_view text) {
    if (text.find('#') != std::string_view::npos) {
        withVariables_.clear();
        ExpressionText::appendWithVariables(
            withVariables_, text, [this](std::string_view name) { return variables_.find(name); });
        text = withVariables_;
    }
    if (ExpressionText::containsIdentifierCandidates(text)) {
        withNumbers_.clear();
        appendWithMeasureNumbers(withNumbers_, text);
        text = withNumbers_;
    }
    text = trimmed(text);
    return text.empty() ? std::nullopt : results_.value(text, evaluateSubstituted);
}

std::optional<bool> RuntimeExpressions::evaluateBooleanExpressionWithMeasures(std::string_view text) {
    const auto value = evaluateNumericExpressionWithMeasures(text);
    return value ? std::optional(*value != 0) : std::nullopt;
}

bool RuntimeExpressions::isSwitchedOn(std::optional<std::string_view> text) {
    if (!text)
        return false;
    const std::string substituted = substituteRuntimeVariables(*text);
    const auto option = trimmed(substituted);
    if (option.empty() || option == "0" || equalsIgnoringCase(option, "FALSE"))
        return false;
    if (option == "1" || equalsIgnoringCase(option, "TRUE"))
        return true;
    auto value = evaluateNumericExpressionWithMeasures(option);
    if (!value)
        value = ExpressionText::evaluateNumericExpression(option);
    if (!value)
        value = CalcMeasure::evaluateIfValid(option);
    return value.value_or(0) != 0;
}

void forEachMeasureReference(
    std::string_view text, const MeasureTable& measures, const std::function<void(const MeasureReference&)>& visit) {
    std::size_t position = 0;
    while (true) {
        const auto open = text.find('[', position);
        const auto close = text.find(']', open);
        if (open == std::string_view::npos || close == std::string_view::npos)
            return;
        position = close + 1;
        const auto inner = text.substr(open + 1, close - open - 1);
        if (inner.starts_with('!') || inner.starts_with('#'))
            continue;
        const auto colon = inner.find(':');
        const auto* measure = measures.find(trimmed(inner.substr(0, colon)));
        if (!measure)
            continue;
        const bool isPercentage = colon != std::string_view::npos && trimmed(inner.substr(colon + 1)) == "%";
        visit({open, position, measure, isPercentage});
    }
}

} // namespace Ostrel
