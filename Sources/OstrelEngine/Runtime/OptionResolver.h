#pragma once

#include "OstrelCore/Documents/SkinModel.h"

#include <vector>

namespace Ostrel::OptionResolver {

/// The meter's options over those of its styles: a later style beats an earlier one, the meter beats all.
Options resolvedOptions(const MeterDefinition& definition, const std::vector<StyleDefinition>& styles);

} // namespace Ostrel::OptionResolver
