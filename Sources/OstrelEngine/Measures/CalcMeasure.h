#pragma once

#include "OstrelEngine/Measures/CalcFormula.h"
#include "OstrelEngine/Measures/MeasureProtocol.h"
#include "OstrelEngine/Measures/MovingAverage.h"

#include <memory>
#include <optional>
#include <string_view>

namespace Ostrel {

/// A number from the option Formula, in which the names of measures stand for their numbers.
class CalcMeasure final : public BaseMeasure {
public:
    using BaseMeasure::BaseMeasure;

    /// The value of arithmetic text; 0 when it has none.
    static double evaluate(std::string_view text);
    /// The same, absent when the text is invalid or the result is not finite. No measure names.
    static std::optional<double> evaluateIfValid(std::string_view text);

    void update() override;
    void resolveMeasureReferences(std::weak_ptr<const MeasuresOwner> owner) override;

private:
    void readFormula();
    void readNumbers();
    std::size_t readAverageSize() const;
    double readBound(const CaseKey& key, double defaultValue) const;

    std::weak_ptr<const MeasuresOwner> owner_;
    /// The `optionsRevision` that the fields below were read at; absent before the first time.
    std::optional<std::uint64_t> readRevision_;
    CalcFormula formula_;
    std::size_t averageSize_ = 1;
    double minimum_ = 0;
    double maximum_ = 1;
    MovingAverage average_;
};

} // namespace Ostrel
