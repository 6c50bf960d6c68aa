#include "OstrelCore/FatalError.h"

#include "OstrelCore/Packages/SkinInput.h"

#include <cstdio>
#include <cstdlib>

namespace Ostrel {

void fatalError(std::string_view message) {
    // What was printed before the fault is still true.
    std::fflush(stdout);
    printMessage(message);
    std::abort();
}

} // namespace Ostrel
