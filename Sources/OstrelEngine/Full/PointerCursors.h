#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelEngine/Full/FullSkinHost.h"

namespace Ostrel {

class FullSkin;

/// The cursor that MouseActionCursorName names: the hand without it, the skin's own standing behind a meter's.
PointerCursor namedCursor(const FullSkin& skin, const Options& options);

} // namespace Ostrel
