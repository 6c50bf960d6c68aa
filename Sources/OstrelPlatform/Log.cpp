#include "OstrelPlatform/Log.h"

#include <cstdio>
#include <string>

namespace Ostrel {

void logToStandardError(std::string_view line) {
    // In one piece, so that the lines of two threads do not mix.
    const auto text = std::string(line) + '\n';
    std::fwrite(text.data(), 1, text.size(), stderr);
}

} // namespace Ostrel
