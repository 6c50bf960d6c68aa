#include "OstrelEngine/Measures/AppleScriptText.h"

#include "OstrelCore/Text.h"

namespace Ostrel {

std::string appleScriptStringLiteral(std::string_view text) {
    return replacingOccurrences(replacingOccurrences(text, "\\", "\\\\"), "\"", "\\\"");
}

} // namespace Ostrel
