#include "OstrelEngine/Measures/MeasureValue.h"

#include <algorithm>

namespace Ostrel {

double MeasureValue::percentValue() const {
    if (!(minValue < maxValue))
        return 0;
    const double percent = (numericValue - minValue) / (maxValue - minValue) * 100;
    return std::max(0.0, std::min(100.0, percent));
}

} // namespace Ostrel
