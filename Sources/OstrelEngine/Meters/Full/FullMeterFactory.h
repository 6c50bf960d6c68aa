#pragma once

#include "OstrelEngine/Meters/Full/FullMeter.h"

#include <memory>

namespace Ostrel::FullMeterFactory {

/// Never null: a meter of an unknown type has its written size and draws nothing.
std::shared_ptr<FullMeter> create(const MeterDefinition& definition, Options options, const FullMeterContext& context);

/// What lies behind all meters, from the options of the skin section: drawn as the first of them, in a frame as large
/// as the window, which is at least its `boxSize` after an update without values.
std::shared_ptr<FullMeter> createBackground(const Options& skinSection, const FullMeterContext& context);

} // namespace Ostrel::FullMeterFactory
