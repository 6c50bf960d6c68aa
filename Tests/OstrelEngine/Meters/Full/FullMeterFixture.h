#pragma once

#include "OstrelDialect/PackFolders.h"
#include "OstrelEngine/Meters/Full/FullMeterFactory.h"
#include "OstrelEngine/Meters/MeterFixture.h"

#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace Ostrel {

/// Makes meters of the full dialect that lie nowhere in particular.
class FullMeterWorkshop {
public:
    std::shared_ptr<FullMeter> make(const char* type, Options options) {
        return FullMeterFactory::create(meterOfType(type), std::move(options), context_);
    }
    /// Updated once and placed where X and Y say.
    std::shared_ptr<FullMeter> place(
        const char* type, const OptionPairs& options, std::vector<MeasureValue> values = {}) {
        auto meter = make(type, optionsOf(options));
        update(*meter, values);
        return meter;
    }
    /// Updates and lays out.
    static void update(FullMeter& meter, const std::vector<MeasureValue>& values) {
        meter.update(values);
        const auto number = [&](const char* key) {
            const auto* text = meter.options().find(key);
            return text ? std::trunc(OptionValues::number(*text).value_or(0)) : 0;
        };
        const Size box = meter.boxSize();
        meter.setFrame({number("X"), number("Y"), box.width, box.height});
    }

private:
    FakePlatform fake_;
    PackFolders folders_;
    FullMeterContext context_{folders_, fake_.platform, 100};
};

} // namespace Ostrel
