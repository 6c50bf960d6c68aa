#pragma once

#include "OstrelDialect/Formula.h"
#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Measures/Full/RandomNumbers.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// The number of a formula, in which names of measures stand for their present numbers, `Counter` for the cycles of the
/// skin and `Random` for one draw. An invalid formula keeps the last number.
class FullCalcMeasure final : public FullMeasure, private FormulaNames {
public:
    FullCalcMeasure(const MeasureDefinition& definition, FullMeasureHost& host);

    void update() override;

private:
    std::optional<std::size_t> place(std::string_view name) const override;
    double value(std::size_t place) const override;

    void readOptions();
    void draw();

    std::string formulaText_;
    std::optional<Formula> formula_;
    double lastResult_ = 0;
    /// What the places of the formula stand for; filled while it is compiled.
    mutable std::vector<const BaseMeasure*> measures_;

    std::int64_t low_ = 0;
    std::int64_t high_ = 100;
    bool drawsAtEachUpdate_ = false;
    bool drawsWithoutRepetition_ = false;
    RandomNumbers random_;
    std::optional<double> drawn_;
    /// Offsets from `low_` that were not drawn yet, in the order of the coming draws.
    std::vector<std::uint16_t> bag_;
};

} // namespace Ostrel
