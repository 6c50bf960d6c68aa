#pragma once

#include "OstrelDialect/OptionValues.h"
#include "OstrelEngine/Measures/MeasureValue.h"

#include <cmath>
#include <optional>
#include <string_view>

namespace Ostrel {

/// The share that a Roundline or Rotator shows: of the measure's range, or with a ValueRemainder what the value leaves
/// when it is divided by that, so that a time turns a clock's hands.
struct ValueShare {
    /// 0 for none.
    double remainder = 0;

    /// `oldSpelling` is ValueReminder, which counts where the other is missing or 0.
    static ValueShare of(std::string_view remainder, std::string_view oldSpelling) {
        for (const auto text : {remainder, oldSpelling})
            if (const auto number = OptionValues::integer(text); number && *number > 0)
                return {static_cast<double>(*number)};
        return {};
    }

    double at(const MeasureValue& value) const {
        if (remainder <= 0)
            return value.percentFraction();
        const double rest = std::fmod(value.numericValue, remainder);
        return std::isfinite(rest) ? rest / remainder : 0;
    }
};

} // namespace Ostrel
