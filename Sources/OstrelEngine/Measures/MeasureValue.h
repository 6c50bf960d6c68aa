#pragma once

#include <string>

namespace Ostrel {

/// What a measure yields: a number with its range, and a text form.
struct MeasureValue {
    double numericValue = 0;
    std::string stringValue;
    /// Consumers show the text rather than the number.
    bool preferStringValue = false;
    double minValue = 0;
    double maxValue = 100;

    /// 0 to 100; 0 when the range is empty.
    double percentValue() const;
    double percentFraction() const { return percentValue() / 100; }

    /// NaN is unequal to itself, so a value that holds one counts as changed on every tick.
    friend bool operator==(const MeasureValue&, const MeasureValue&) = default;
};

} // namespace Ostrel
