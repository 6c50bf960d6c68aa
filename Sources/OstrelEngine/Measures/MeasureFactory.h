#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <memory>
#include <string>

namespace Ostrel::MeasureFactory {

/// Never null: a type or plugin without a counterpart becomes a `StubMeasure`.
std::unique_ptr<BaseMeasure> create(
    const MeasureDefinition& definition, const std::string& skinPath, const Platform& platform);

} // namespace Ostrel::MeasureFactory
