#pragma once

namespace Ostrel {

/// Qt's fill routines leave the upper halves of the processor's vector registers set, which makes all arithmetic after
/// them up to ten times slower until they are cleared. Call it after painting.
void clearVectorState();

} // namespace Ostrel
