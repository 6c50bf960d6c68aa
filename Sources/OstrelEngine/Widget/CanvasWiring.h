#pragma once

#include <memory>

namespace Ostrel {

class CanvasInput;
class SkinRuntime;

/// Sends what the input makes of the pointer and of its field to the skin. The skin is held weakly, so that a late
/// event of a stopped widget goes nowhere.
void connectCanvas(CanvasInput& input, const std::shared_ptr<SkinRuntime>& runtime);

} // namespace Ostrel
