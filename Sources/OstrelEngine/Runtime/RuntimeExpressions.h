#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelEngine/Runtime/ExpressionMemo.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

class BaseMeasure;
class MeasureTable;

/// Variables, measure references and arithmetic in option text, as they stand at the moment of the call. One thread.
class RuntimeExpressions {
public:
    /// Both must outlive this.
    RuntimeExpressions(const Options& variables, const MeasureTable& measures)
        : variables_(variables)
        , measures_(measures) { }

    /// Each "#Name#" of a known variable becomes its value.
    std::string substituteRuntimeVariables(std::string_view text) const;
    /// Each bare name of a measure becomes its number.
    std::string substituteMeasureIdentifiers(std::string_view text) const;
    /// Each "[Measure]" becomes its number, each "[Measure:%]" its percentage; other brackets stay.
    std::string resolveMeasureReferences(std::string_view text) const;

    /// The value of the text after both substitutions; absent when it has none or is not finite.
    std::optional<double> evaluateNumericExpressionWithMeasures(std::string_view text);
    /// Whether that value is not 0.
    std::optional<bool> evaluateBooleanExpressionWithMeasures(std::string_view text);
    /// Whether an option is switched on: "1", "true", or an expression that is not 0. Absent and unreadable are off.
    bool isSwitchedOn(std::optional<std::string_view> text);

private:
    void appendWithMeasureNumbers(std::string& result, std::string_view text) const;

    const Options& variables_;
    const MeasureTable& measures_;
    ExpressionMemo results_;
    /// Kept for their capacity: the same expressions come back every tick.
    std::string withVariables_;
    std::string withNumbers_;
};

/// Calls `visit` for each "[Name]" and "[Name:%]" in the text that names a measure, left to right, with the offset of
/// its opening bracket, the offset behind its closing one, the measure and whether its percentage is meant.
struct MeasureReference {
    std::size_t begin = 0;
    std::size_t end = 0;
    const BaseMeasure* measure = nullptr;
    bool isPercentage = false;
};
void forEachMeasureReference(
    std::string_view text, const MeasureTable& measures, const std::function<void(const MeasureReference&)>& visit);

} // namespace Ostrel
