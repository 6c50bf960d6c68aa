#pragma once

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/Full/FullMeasure.h"

namespace Ostrel {

/// The text of the option String, whose references are resolved already.
class FullStringMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override {
        const auto written = text("String"_key);
        publishText(written, parseDouble(trimmed(written)).value_or(0));
    }
};

} // namespace Ostrel
