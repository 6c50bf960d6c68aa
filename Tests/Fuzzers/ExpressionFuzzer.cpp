#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/CalcMeasure.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

/// Arithmetic text: what has a value is finite, and blanks around it change nothing.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    // This function ends the process where there is no integer, which is promised.
    if (Ostrel::containsIgnoringCase(text, "TRUNC"))
        return 0;
    const auto value = Ostrel::CalcMeasure::evaluateIfValid(text);
    if (value && !std::isfinite(*value))
        std::abort();
    if (value != Ostrel::CalcMeasure::evaluateIfValid("\t" + text + "\n"))
        std::abort();
    return 0;
}
