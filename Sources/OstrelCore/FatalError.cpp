#include "OstrelCore/FatalError.h"

#include <cstdlib>
#include <iostream>

namespace Ostrel {

void fatalError(std::string_view message) {
    std::cerr << message << std::endl;
    std::abort();
}

} // namespace Ostrel
