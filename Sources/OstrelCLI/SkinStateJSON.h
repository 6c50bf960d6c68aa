#pragma once

#include "OstrelCLI/JSON.h"

namespace Ostrel {

class Skin;
struct Rect;

/// [x, y, width, height]
JSON rectJSON(const Rect& rect);
/// What a running skin shows of itself: size, measures, meters and variables, as members of one object.
JSON skinStateJSON(Skin& skin);

} // namespace Ostrel
