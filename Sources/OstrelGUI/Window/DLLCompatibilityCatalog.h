#pragma once

#include <span>
#include <string_view>

namespace Ostrel {

struct DLLCompatibilityLayer {
    std::string_view id;
    std::string_view name;
    std::string_view notes;
    bool isWorking = false;
};

/// Which plugins of Windows have a counterpart here: a record kept by hand, not derived from the engine.
namespace DLLCompatibilityCatalog {
std::span<const DLLCompatibilityLayer> layers();
} // namespace DLLCompatibilityCatalog

} // namespace Ostrel
