#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <memory>
#include <string>
#include <string_view>

namespace Ostrel {
class MeasureHost;
}

namespace Ostrel::MeasureFactory {

/// Never null: a type or plugin without a counterpart becomes a `StubMeasure`. Platform and host outlive the measure.
std::unique_ptr<BaseMeasure> create(
    const MeasureDefinition& definition, const std::string& skinPath, const Platform& platform, MeasureHost& host);

/// The definition of a plugin that showed players of another kind, for the measure that shows the local ones.
MeasureDefinition makeNowPlayingAliasDefinition(
    MeasureDefinition definition, std::string_view fallbackPlayerName, std::string_view typeOptionKey);

} // namespace Ostrel::MeasureFactory
