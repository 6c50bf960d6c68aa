#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Measures/Full/SubstituteChain.h"
#include "OstrelEngine/Measures/MeasureProtocol.h"
#include "OstrelEngine/Measures/MovingAverage.h"

#include <memory>
#include <optional>
#include <string>

namespace Ostrel {

/// Which general options a kind of measure obeys.
struct ShapingRules {
    /// Whether `MinValue` and `MaxValue` replace the bounds that the measure published.
    enum class Bounds { FromOptions, Own };
    enum class Inversion { Allowed, UnlessTotal, Ignored };

    Bounds bounds = Bounds::FromOptions;
    Inversion inversion = Inversion::Allowed;
    bool averages = true;
};

/// The general options of a measure: the mean over `AverageSize` values, the bounds, `InvertMeasure`, `Substitute`.
/// Where a measure publishes an empty range, with its minimum above its maximum, the bounds are tracked: they start at
/// 0 and 1 and only widen.
class FullValueShaping final : public ValueShaping {
public:
    /// Host and measure outlive the shaping.
    FullValueShaping(ShapingRules rules, FullMeasureHost& host, const BaseMeasure& measure);

    void shape(MeasureValue& value) override;
    void optionsDidChange(const Options& options) override;

private:
    void readSubstitution(const Options& options);
    void boundsOf(MeasureValue& value);
    void substituteText(MeasureValue& value);

    ShapingRules rules_;
    FullMeasureHost& host_;
    const BaseMeasure& measure_;

    std::size_t averageSize_ = 1;
    MovingAverage average_;
    bool isInverted_ = false;
    std::optional<double> minimum_;
    std::optional<double> maximum_;
    double lowest_ = 0;
    double highest_ = 1;

    /// The options that `chain_` was made from.
    std::string substitute_;
    bool isRegularExpression_ = false;
    std::shared_ptr<const SubstituteChain> chain_;
    std::optional<std::string> lastText_;
    std::string lastSubstituted_;
};

} // namespace Ostrel
