#pragma once

#include <memory>

namespace Ostrel {

class CanvasInput;
class HostStatistics;
class SkinRuntime;

/// Sends what the input makes of the pointer and of its field to the skin. The skin is held weakly, so that a late
/// event of a stopped widget goes nowhere. An event is a wake of its own: a measure that an action updates sees the
/// host as it is now. The statistics outlive the input.
void connectCanvas(CanvasInput& input, const std::shared_ptr<SkinRuntime>& runtime, HostStatistics& statistics);

} // namespace Ostrel
