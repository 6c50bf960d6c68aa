#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"

#include <memory>
#include <string>
#include <string_view>

namespace Ostrel::FullMeasureFactory {

/// Makes the measure that a section asks for, with the general options applied to its values. Never null: an unknown
/// type gives a stub and a line in the log.
std::unique_ptr<BaseMeasure> create(const MeasureDefinition& definition, FullMeasureHost& host);

/// The name of a plugin in upper case without its folder and ".dll".
std::string pluginName(std::string_view written);

/// Whether a section of this type has more than a stub behind it. `plugin` counts only for the type "Plugin".
bool isServed(std::string_view type, std::string_view plugin);

} // namespace Ostrel::FullMeasureFactory
