#pragma once

#include "OstrelEngine/Meters/MeterProtocol.h"

#include <memory>
#include <string>

namespace Ostrel::MeterFactory {

/// Never null: a type that is not drawn becomes a placeholder.
std::shared_ptr<MeterRenderer> create(
    const MeterDefinition& definition, Options options, const std::string& skinPath, const Platform& platform);

} // namespace Ostrel::MeterFactory
