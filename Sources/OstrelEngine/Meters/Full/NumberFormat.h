#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelEngine/Measures/MeasureValue.h"
#include "OstrelEngine/Meters/MeterProtocol.h"

#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

/// How a text of the full dialect shows a measure that has a number and no text of its own.
struct NumberFormat {
    /// NumOfDecimals; absent when it is not written.
    std::optional<int> decimals;
    bool isPercentual = false;
    /// Never 0.
    double scale = 1;
    /// Scale is written with a point, so that a decimal shows.
    bool scaleHasPoint = false;
    /// 1024 or 1000; 0 without AutoScale.
    int autoScaleBase = 0;
    /// Divided at least once, so that k is the lowest unit.
    bool startsAtKilo = false;

    static NumberFormat parse(const Options& options);
    /// That of tool tips of texts.
    static NumberFormat ofToolTips();

    /// The number's text; one that is not finite counts as 0. Halves are rounded away from zero.
    std::string number(const MeasureValue& value) const;
    /// The value's own text, else that of its number after the value's rule.
    std::string text(const MeasureValue& value) const;

    friend bool operator==(const NumberFormat&, const NumberFormat&) = default;
};

/// The template with "%1", "%2", ... replaced by the values; a number beyond the last value stays as written. Values
/// are not scanned. The result is cut at 1 MiB.
std::string replacingPlaces(std::string_view textTemplate, MeasureValues values, const NumberFormat& format);

} // namespace Ostrel
