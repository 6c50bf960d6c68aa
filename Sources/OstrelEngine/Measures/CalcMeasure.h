#pragma once

#include "OstrelEngine/Measures/CalcFormula.h"
#include "OstrelEngine/Measures/MeasureProtocol.h"
#include "OstrelEngine/Measures/MovingAverage.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

class MeasureHost;

/// A number from the option Formula, in which the names of measures stand for their numbers.
class CalcMeasure final : public BaseMeasure {
public:
    CalcMeasure(const MeasureDefinition& definition, std::string skinPath, const MeasureHost& host);

    /// The value of arithmetic text; 0 when it has none.
    static double evaluate(std::string_view text);
    /// The same, absent when the text is invalid or the result is not finite. No measure names.
    static std::optional<double> evaluateIfValid(std::string_view text);

    void update() override;

private:
    void readNumbers();
    std::size_t readAverageSize() const;
    double readBound(const CaseKey& key, double defaultValue) const;

    const MeasureHost& host_;
    /// The `optionsRevision` that the fields below were read at; absent before the first time.
    std::optional<std::uint64_t> readRevision_;
    CalcFormula formula_;
    std::size_t averageSize_ = 1;
    double minimum_ = 0;
    double maximum_ = 1;
    MovingAverage average_;
};

} // namespace Ostrel
