#pragma once

#include "OstrelEngine/Host/CanvasBackground.h"

namespace Ostrel {

struct SkinConfig;

/// The background that a skin asks for in its first section. Its image is read from disk; one that cannot be is none.
CanvasBackground backgroundOf(const SkinConfig& config);

} // namespace Ostrel
