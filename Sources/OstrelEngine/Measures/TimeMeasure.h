#pragma once

#include "OstrelEngine/Measures/DateFormatter.h"
#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <string>
#include <string_view>

namespace Ostrel {

class Clock;

/// The time of day: seconds since 1970 as its number, and a text after the option Format, which is read once.
class TimeMeasure final : public BaseMeasure {
public:
    TimeMeasure(const MeasureDefinition& definition, std::string skinPath, const Clock& clock);

    void update() override;

    /// The date pattern that stands for a format of percent directives.
    static std::string convertStrftime(std::string_view format);

private:
    const Clock& clock_;
    DateFormatter formatter_;
};

} // namespace Ostrel
