#pragma once

#include <cstddef>

namespace Ostrel {

/// Calls of operator new in this program so far. Linked only into programs that count.
std::size_t allocationCount();

} // namespace Ostrel
