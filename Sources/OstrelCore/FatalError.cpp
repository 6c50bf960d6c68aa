#include "OstrelCore/FatalError.h"

#include "OstrelCore/Packages/SkinInput.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

namespace Ostrel {

namespace {

std::array<char, 256> lastMessage{};

} // namespace

const char* fatalMessage() {
    return lastMessage.data();
}

void fatalError(std::string_view message) {
    std::copy_n(message.begin(), std::min(message.size(), lastMessage.size() - 1), lastMessage.begin());
    // What was printed before the fault is still true.
    std::fflush(stdout);
    printMessage(message);
    std::abort();
}

} // namespace Ostrel
