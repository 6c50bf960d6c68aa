#pragma once

#include "OstrelCore/CompatReport.h"
#include "OstrelCore/SkinModel.h"

namespace Ostrel::CompatScanner {

/// What of a loaded skin will not work here. Touches no file.
CompatReport scan(const SkinConfig& config);

} // namespace Ostrel::CompatScanner
