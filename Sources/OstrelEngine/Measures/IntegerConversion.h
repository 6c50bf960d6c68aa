#pragma once

#include "OstrelCore/FatalError.h"

#include <cmath>
#include <cstdint>

namespace Ostrel {

/// Cut toward zero. A value that has no 64-bit integer stops the process: there is no number that would not be wrong.
inline std::int64_t integerOrStop(double value) {
    if (!std::isfinite(value))
        fatalError("Double value cannot be converted to Int because it is either infinite or NaN");
    if (value < -9223372036854775808.0)
        fatalError("Double value cannot be converted to Int because the result would be less than Int.min");
    if (value >= 9223372036854775808.0)
        fatalError("Double value cannot be converted to Int because the result would be greater than Int.max");
    return static_cast<std::int64_t>(value);
}

} // namespace Ostrel
