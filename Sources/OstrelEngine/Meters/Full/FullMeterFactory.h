#pragma once

#include "OstrelEngine/Meters/Full/FullMeter.h"

#include <memory>

namespace Ostrel::FullMeterFactory {

/// Never null: a meter of an unknown type has its written size and draws nothing.
std::shared_ptr<FullMeter> create(const MeterDefinition& definition, Options options, const FullMeterContext& context);

} // namespace Ostrel::FullMeterFactory
