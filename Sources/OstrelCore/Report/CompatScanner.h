#pragma once

#include "OstrelCore/Documents/SkinModel.h"
#include "OstrelCore/Report/CompatReport.h"

namespace Ostrel::CompatScanner {

/// What of a loaded skin will not work here. Touches no file.
CompatReport scan(const SkinConfig& config);

} // namespace Ostrel::CompatScanner
